#pragma once

#include <cstddef>
#include <cstdint>

#include "Engine/BootloaderMessages.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/Variant.h"

// A reply of the bootloader on its way from the capture thread to the transfer. Comes from
// recycled memory.
class LProtoBootloaderMidiMessagePayloadData : public virtual TF::LRefCountedObject {
 public:
  explicit LProtoBootloaderMidiMessagePayloadData(const BootloaderReply& reply);

  static void* operator new(std::size_t size);
  static void operator delete(void* block);

  const std::uint32_t mReplyCode;
  const TF::Variant mValue;  // 8 bits for BL_REPLY_READY, else 32 bits.
  const std::uint32_t mHardwareId;
};
