#include "Engine/ProtoBootloaderMidiMessagePayloadData.h"

#include "TFFramework/Threads/ReuseAllocator.h"

namespace {

using Blocks = TF::ReuseAllocator<LProtoBootloaderMidiMessagePayloadData, 4>;

// Never destroyed: a payload may outlive every other static.
Blocks& GetBlocks() {
  static Blocks& blocks = *new Blocks(true);
  return blocks;
}

TF::Variant ValueOf(const BootloaderReply& reply) {
  if (reply.mCode == BL_REPLY_READY) return TF::Variant(static_cast<std::uint8_t>(reply.mValue));
  return TF::Variant(reply.mValue);
}

}  // namespace

LProtoBootloaderMidiMessagePayloadData::LProtoBootloaderMidiMessagePayloadData(const BootloaderReply& reply)
    : mReplyCode(reply.mCode), mValue(ValueOf(reply)), mHardwareId(reply.mHardwareId) {}

void* LProtoBootloaderMidiMessagePayloadData::operator new(std::size_t size) {
  return GetBlocks().Allocate(size);
}

void LProtoBootloaderMidiMessagePayloadData::operator delete(void* block) {
  GetBlocks().Free(block);
}
