#include "TFFramework/Renderer/Gdi/GDIRendererOffscreenSurface.h"

#include <algorithm>

#include "Platform/Desktop.h"

namespace TF {

namespace {

SizeT<std::int32_t> AtLeastOne(const SizeT<std::int32_t>& size) {
  return {std::max(size.mWidth, 1), std::max(size.mHeight, 1)};
}

}  // namespace

LGDIRendererOffscreenSurface::LGDIRendererOffscreenSurface(const SizeT<std::int32_t>& size) {
  Resize(size);
}

bool LGDIRendererOffscreenSurface::HasSize(const SizeT<std::int32_t>& size) const {
  return mSize == AtLeastOne(size);
}

void LGDIRendererOffscreenSurface::Resize(const SizeT<std::int32_t>& size) {
  if (mCanvas && HasSize(size)) return mCanvas->Clear();
  const SizeT<std::int32_t> wanted = AtLeastOne(size);
  mCanvas = Platform::GetDesktop().CreateCanvas(wanted.mWidth, wanted.mHeight);
  mSize = wanted;
}

}  // namespace TF
