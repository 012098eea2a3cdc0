#pragma once

#include <cstdint>
#include <memory>

#include "Platform/Canvas.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// A canvas of a given size.
class LGDIRendererOffscreenSurface : public virtual LRefCountedObject {
 public:
  // A side below 1 counts as 1.
  explicit LGDIRendererOffscreenSurface(const SizeT<std::int32_t>& size);

  // Goes on with transparent pixels in this size.
  void Resize(const SizeT<std::int32_t>& size);
  bool HasSize(const SizeT<std::int32_t>& size) const;
  SizeT<std::int32_t> GetSize() const { return mSize; }
  Platform::Canvas& GetCanvas() { return *mCanvas; }

 private:
  SizeT<std::int32_t> mSize;
  std::unique_ptr<Platform::Canvas> mCanvas;
};

}  // namespace TF
