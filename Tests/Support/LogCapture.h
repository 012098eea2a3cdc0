#pragma once

#include <condition_variable>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TestSupport {

// Takes the narrow records of a log from its beginning to its end, from any thread.
class LogCapture {
 public:
  explicit LogCapture(TF::DiagnosticsLog& log = TF::GetDiagnosticsLog());
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  // All that was recorded so far.
  std::string Text();
  bool Contains(std::string_view text);
  // Waits until text was recorded; false when it was not in time.
  bool WaitFor(std::string_view text);

 private:
  class Buffer : public std::streambuf {
   public:
    std::mutex mMutex;
    std::condition_variable mGrown;
    std::string mText;

   protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
  };

  TF::DiagnosticsLog& mLog;
  Buffer mBuffer;
  std::ostream mStream{&mBuffer};
  std::ostream& mFormer;
};

}  // namespace TestSupport
