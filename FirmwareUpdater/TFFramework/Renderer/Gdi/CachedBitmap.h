#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "Platform/Canvas.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Storage/HashedList.h"

namespace TF {

// A picture at the size in which it is drawn.
struct CashableBitmapDescriptor {
  RCPtr<LBitmap> mBitmap;
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;

  bool operator==(const CashableBitmapDescriptor& other) const {
    return mBitmap == other.mBitmap && mWidth == other.mWidth && mHeight == other.mHeight;
  }

  static const CashableBitmapDescriptor& Key(const CashableBitmapDescriptor& descriptor) {
    return descriptor;
  }
  // Bits 4 to 11 of the address of the image: all windows into one image share a bucket.
  static std::uint32_t Hash(const CashableBitmapDescriptor& descriptor) {
    const void* const image = descriptor.mBitmap ? descriptor.mBitmap->GetImage() : nullptr;
    return GetBits<8, 4>(reinterpret_cast<std::uintptr_t>(image));
  }
};

// Its pixels, ready to be copied.
class LCachedBitmap : public virtual LRefCountedObject {
 public:
  explicit LCachedBitmap(std::unique_ptr<Platform::CanvasPicture> picture) : mPicture(std::move(picture)) {}

  const Platform::CanvasPicture& GetPicture() const { return *mPicture; }

 private:
  const std::unique_ptr<Platform::CanvasPicture> mPicture;
};

}  // namespace TF
