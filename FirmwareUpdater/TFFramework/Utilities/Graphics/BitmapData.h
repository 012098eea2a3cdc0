#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/PixelBuffer.h"

namespace TF {

enum class LockMode : std::uint32_t { kRead = 1, kWrite = 2, kReadWrite = 3 };

// A view of a picture's pixels, 0xAARRGGBB and not premultiplied, that lasts as long as the object.
// An image has one view at a time.
//
// The mode says what the caller means to do; the view looks the same in each.
class LBitmapData : public virtual LRefCountedObject, public IPixelBuffer<std::uint32_t> {
 public:
  // Throws domain_error when source is not null: pixels are never taken from elsewhere.
  LBitmapData(const RCPtr<LBitmap>& bitmap, LockMode mode, const void* source = nullptr);
  ~LBitmapData() override;

  // False when another view holds the image, the picture reaches beyond it or has none. There are no
  // pixels then: the sizes are 0 and the addresses null.
  bool IsLocked() const { return mPixels != nullptr; }
  LockMode GetMode() const { return mMode; }

  std::int32_t GetWidth() const override { return mWidth; }
  std::int32_t GetHeight() const override { return mHeight; }
  std::int32_t GetStride() const override { return mStride; }
  std::uint32_t* GetPixels() override { return mPixels; }
  std::uint32_t* GetPixelAddress(std::int32_t x, std::int32_t y) override;

 private:
  const RCPtr<LBitmap> mBitmap;
  const LockMode mMode;
  BitmapImage* mImage = nullptr;
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  std::int32_t mStride = 0;
  std::uint32_t* mPixels = nullptr;
};

}  // namespace TF
