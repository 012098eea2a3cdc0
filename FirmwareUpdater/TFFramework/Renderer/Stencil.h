#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// A shape to draw through. Renderers store it and give it back; none draws through it yet.
class LStencil : public virtual LRefCountedObject {
 public:
  explicit LStencil(const SizeT<std::int32_t>& size) : mSize(size), mRect{0, 0, size.mWidth, size.mHeight} {}

  // A new one of the same size, with the whole of it as its rectangle.
  RCPtr<LStencil> Clone() const { return MakeRC<LStencil>(mSize); }

  const SizeT<std::int32_t>& GetSize() const { return mSize; }
  const RectT<std::int32_t>& GetRect() const { return mRect; }
  void SetRect(const RectT<std::int32_t>& rect) { mRect = rect; }

 private:
  const SizeT<std::int32_t> mSize;
  RectT<std::int32_t> mRect;
};

}  // namespace TF
