#include "Tests/Support/MidiRecorder.h"

#include <gtest/gtest.h>

#include <chrono>

#include "Platform/MidiByteStream.h"

namespace TestSupport {
namespace {

using Platform::MidiBuffer;
using Platform::MidiMessage;

constexpr std::chrono::seconds kMidiPatience{20};

}  // namespace

std::string Exclusive(std::size_t size) {
  std::string message(size, '\xF0');
  for (std::size_t i = 1; i + 1 < size; ++i) message[i] = static_cast<char>((i * 7 + i / 128) & 0x7F);
  message.back() = '\xF7';
  return message;
}

void MidiRecorder::OnMidiMessage(Platform::MidiHandle port, MidiMessage message, std::uintptr_t first,
                                 std::uintptr_t second) {
  {
    const std::lock_guard lock(mMutex);
    ++mEntered;
    mChanged.notify_all();
  }
  const std::lock_guard callback(mCallbackLock);
  const Event event = MakeEvent(port, message, first, second);
  if (mDriver != nullptr && message == MidiMessage::kLongData && !event.bytes.empty()) {
    mDriver->PrepareInputBuffer(port, *event.buffer);
    mDriver->AddInputBuffer(port, *event.buffer);
  }
  const std::lock_guard lock(mMutex);
  mEvents.push_back(event);
  mByteCount += event.bytes.size();
  mChanged.notify_all();
}

MidiRecorder::Event MidiRecorder::MakeEvent(Platform::MidiHandle port, MidiMessage message,
                                            std::uintptr_t first, std::uintptr_t second) {
  Event event{message, {}, nullptr, second, port, std::this_thread::get_id()};
  if (message == MidiMessage::kData) {
    for (std::uint32_t i = 0; i < Platform::MidiShortLength(first & 0xFF); ++i) {
      event.bytes += static_cast<char>(first >> 8 * i & 0xFF);
    }
    return event;
  }
  event.buffer = reinterpret_cast<MidiBuffer*>(first);
  // The buffer of a send may be gone by now.
  if (message == MidiMessage::kLongData) event.bytes.assign(event.buffer->data, event.buffer->recorded);
  return event;
}

std::vector<MidiRecorder::Event> MidiRecorder::WaitForEvents(std::size_t count) {
  std::unique_lock lock(mMutex);
  EXPECT_TRUE(mChanged.wait_for(lock, kMidiPatience, [&] { return mEvents.size() >= count; }))
      << mEvents.size() << " of " << count << " messages have come";
  return mEvents;
}

std::vector<MidiRecorder::Event> MidiRecorder::Events() {
  const std::lock_guard lock(mMutex);
  return mEvents;
}

std::string MidiRecorder::WaitForBytes(std::size_t count) {
  std::unique_lock lock(mMutex);
  EXPECT_TRUE(mChanged.wait_for(lock, kMidiPatience, [&] { return mByteCount >= count; }))
      << mByteCount << " of " << count << " bytes have come";
  std::string bytes;
  for (const Event& event : mEvents) bytes += event.bytes;
  return bytes;
}

void MidiRecorder::WaitForCallback() {
  std::unique_lock lock(mMutex);
  EXPECT_TRUE(mChanged.wait_for(lock, kMidiPatience, [&] { return mEntered > mEvents.size(); }));
}

MidiBufferSet::MidiBufferSet(std::size_t count, std::size_t bytes)
    : mData(count, std::vector<char>(bytes)), mBuffers(count) {
  for (std::size_t i = 0; i < count; ++i) {
    mBuffers[i].data = mData[i].data();
    mBuffers[i].length = static_cast<std::uint32_t>(bytes);
  }
}

void MidiBufferSet::AddTo(Platform::MidiDriver& driver, Platform::MidiHandle port) {
  for (MidiBuffer& buffer : mBuffers) {
    EXPECT_EQ(driver.PrepareInputBuffer(port, buffer), Platform::kMidiOk);
    EXPECT_EQ(driver.AddInputBuffer(port, buffer), Platform::kMidiOk);
  }
}

}  // namespace TestSupport
