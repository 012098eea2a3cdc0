#include "TFFramework/Midi/MidiCaptureNotificationData.h"

#include <cstring>

#include "TFFramework/Threads/ReuseAllocator.h"

namespace TF {

namespace {

using Blocks = ReuseAllocator<LMidiCaptureNotificationData, 4>;

// Never destroyed: a payload may outlive every other static.
Blocks& GetBlocks() {
  static Blocks& blocks = *new Blocks(true);
  return blocks;
}

}  // namespace

LMidiCaptureNotificationData::LMidiCaptureNotificationData(const LRefCountedObject* port,
                                                           const String& portName, std::uint32_t timestamp)
    : mPort(port), mPortName(portName), mTimestamp(timestamp) {}

void LMidiCaptureNotificationData::Append(const char* bytes, std::int32_t count) {
  const std::int32_t end = mData.GetCount();
  mData.SetCount(end + count);
  std::memcpy(mData.GetBuffer() + end, bytes, static_cast<std::size_t>(count));
}

void* LMidiCaptureNotificationData::operator new(std::size_t size) {
  return GetBlocks().Allocate(size);
}

void LMidiCaptureNotificationData::operator delete(void* block) {
  GetBlocks().Free(block);
}

}  // namespace TF
