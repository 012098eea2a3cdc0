#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "TFFramework/Midi/MidiCaptureNotificationData.h"
#include "TFFramework/Midi/MidiCommInterface.h"

// A client that keeps every captured message it hears of. While it lives it is registered.
class CaptureClient : public TF::LNotificationClient {
 public:
  struct Message {
    std::string bytes;
    std::uint32_t timestamp;
    std::u16string portName;
    const TF::LRefCountedObject* port;
  };
  static constexpr std::chrono::seconds kPatience{30};

  // handler, if given, runs in every notification, on the service's thread.
  explicit CaptureClient(std::function<void()> handler = nullptr) : mHandler(std::move(handler)) {}

  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification) override {
    const TF::RCPtr<TF::LMidiCaptureNotificationData> data = notification->GetData();
    {
      const std::lock_guard<std::mutex> lock(mMutex);
      mSender = sender.Get();
      if (data) {
        mMessages.push_back({std::string(data->mData.begin(), data->mData.end()), data->mTimestamp,
                             std::u16string(data->mPortName.View()), data->mPort});
      }
    }
    if (mHandler) mHandler();
    const std::lock_guard<std::mutex> lock(mMutex);
    ++mHandled;
    mChanged.notify_all();
  }

  // Until so many have been handled in all; false when that takes too long.
  bool WaitFor(std::size_t count) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mChanged.wait_for(lock, kPatience, [&] { return mHandled >= count; });
  }

  std::vector<Message> Messages() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mMessages;
  }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Message& message : Messages()) texts.push_back(message.bytes);
    return texts;
  }

  const TF::LNotificationDistributor* Sender() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mSender;
  }

 private:
  const std::function<void()> mHandler;
  mutable std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<Message> mMessages;
  std::size_t mHandled = 0;
  const TF::LNotificationDistributor* mSender = nullptr;
};
