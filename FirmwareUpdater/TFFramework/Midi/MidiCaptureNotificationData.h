#pragma once

#include <cstddef>
#include <cstdint>

#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Threads/ReuseBufferAllocator.h"
#include "TFFramework/Utilities/Storage/ArrayBufferM.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Payload of "NID_MIDI_DATA_CAPTURED": one whole MIDI message and where it came from. Object
// and bytes come from recycled memory, so that a stream of messages leaves the heap alone.
class LMidiCaptureNotificationData : public virtual LRefCountedObject {
 public:
  static constexpr std::int32_t kInlineBytes = 4;
  static constexpr std::int32_t kGrainBytes = 256;
  using Bytes = ArrayBufferM<char, kInlineBytes, kGrainBytes, kGrainBytes, 1, 8, GetReuseBufferAllocator>;

  // port is kept as an address to compare, not as a reference. timestamp is in milliseconds
  // since the port was started; system-exclusive messages have 0.
  LMidiCaptureNotificationData(const LRefCountedObject* port, const String& portName,
                               std::uint32_t timestamp = 0);

  void Append(const char* bytes, std::int32_t count);

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  const LRefCountedObject* const mPort;
  Bytes mData;
  const String mPortName;
  const std::uint32_t mTimestamp;
};

}  // namespace TF
