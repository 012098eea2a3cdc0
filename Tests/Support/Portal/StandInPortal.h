#pragma once

#include <gio/gio.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace TestSupport {

// A FileChooser portal that answers as a test wants instead of asking a user, on a bus of its own thread.
class StandInPortal {
 public:
  enum class Conduct {
    kAnswers,
    kAnswersFirst,    // Before it tells that it has taken the question.
    kAnswersWrongly,  // With a value that is no answer.
    kKeepsSilent,     // The dialog stays open.
    kTakesNothing,    // Not even the question.
    kDies,            // With the dialog open.
    kRefuses,         // There is no dialog behind it.
  };

  struct Answer {
    Conduct mConduct = Conduct::kAnswers;
    std::uint32_t mResponse = 0;
    std::vector<std::string> mUris = {};
  };

  // Throws runtime_error when the bus does not give it the portal's name.
  StandInPortal(const std::string& address, Answer answer);
  StandInPortal(const StandInPortal&) = delete;
  StandInPortal& operator=(const StandInPortal&) = delete;
  ~StandInPortal();

  // Window, title and options as GVariant prints them; empty before the question.
  std::string GetQuestion();
  // Who asked has left the bus.
  bool IsAskerGone() const { return mIsAskerGone; }

 private:
  void Connect();
  void Answering(GDBusMethodInvocation* invocation, GVariant* parameters);
  void Respond(const std::string& path, const char* asker);
  void Watch(const char* asker);

  static void HandleCall(GDBusConnection*, const char*, const char*, const char*, const char*,
                         GVariant* parameters, GDBusMethodInvocation* invocation, void* data);
  static void HandleOwner(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                          void* data);

  const std::string mAddress;
  const Answer mAnswer;
  GMainContext* const mContext = g_main_context_new();
  GMainLoop* const mLoop = g_main_loop_new(mContext, FALSE);
  GDBusConnection* mConnection = nullptr;
  std::mutex mMutex;
  std::string mQuestion;
  std::atomic<bool> mIsAskerGone{false};
  std::thread mThread;
};

}  // namespace TestSupport
