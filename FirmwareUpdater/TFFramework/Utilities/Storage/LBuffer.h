#pragma once

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/Buffer.h"

namespace TF {

// A memory block that several owners can share.
class LIBuffer : public virtual IBuffer, public virtual LRefCountedObject {
 public:
  using LRefCountedObject::CreateCopy;
  // A block of size bytes, zero-filled, with what there is of this one from offset on.
  virtual RCPtr<LIBuffer> CreateCopy(std::uint32_t size, std::uint32_t offset) const = 0;
};

template <std::uint32_t Grain, std::uint32_t Slack, std::uint32_t Alignment, class P,
          IAllocator& (*AllocatorOf)()>
class LBufferT final : public BufferT<Grain, Slack, Alignment, P, AllocatorOf>, public LIBuffer {
  using Block = BufferT<Grain, Slack, Alignment, P, AllocatorOf>;

 public:
  using Block::Block;

  RCPtr<LRefCountedObject> CreateCopy() const override { return CopyOf(this->GetSize(), 0); }
  RCPtr<LIBuffer> CreateCopy(std::uint32_t size, std::uint32_t offset) const override {
    return CopyOf(size, offset);
  }

 private:
  RCPtr<LBufferT> CopyOf(std::uint32_t size, std::uint32_t offset) const {
    auto copy = MakeRC<LBufferT>(size, 0u, true);
    if (offset < this->GetSize()) {
      const std::uint32_t count = std::min(size, this->GetSize() - offset);
      if (count > 0) {
        std::memcpy(copy->GetPointer(), static_cast<const char*>(this->Block::GetPointer()) + offset, count);
      }
    }
    return copy;
  }
};

// Exact-size bytes: the default storage of strings.
using ByteBuffer = LBufferT<1, 0, 8, char*, GetSystemAllocator>;
// Bytes with slack, for texts that are built up by appending.
using AppendBuffer = LBufferT<1, 128, 8, char*, GetSystemAllocator>;

}  // namespace TF
