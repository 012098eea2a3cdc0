#include "TFFramework/Utilities/Graphics/BitmapData.h"

#include <stdexcept>

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

LBitmapData::LBitmapData(const RCPtr<LBitmap>& bitmap, LockMode mode, const void* source)
    : mBitmap(bitmap), mMode(mode) {
  if (source) Throw<std::domain_error>("", "TF::LBitmapData::LBitmapData");
  if (!mBitmap || !mBitmap->IsInsideImage()) return;
  LBitmap& owner = mBitmap->mParent ? *mBitmap->mParent : *mBitmap;
  if (owner.mImage->mLocked) return;
  mImage = &*owner.mImage;
  mImage->mLocked = true;
  Platform::Picture& picture = mImage->mPicture;
  mWidth = mBitmap->mWidth;
  mHeight = mBitmap->mHeight;
  mStride = static_cast<std::int32_t>(picture.mWidth * sizeof(std::uint32_t));
  mPixels = picture.mPixels.data() + std::size_t(mBitmap->mY) * picture.mWidth + std::size_t(mBitmap->mX);
}

LBitmapData::~LBitmapData() {
  if (mImage) mImage->mLocked = false;
}

std::uint32_t* LBitmapData::GetPixelAddress(std::int32_t x, std::int32_t y) {
  if (!mPixels) return nullptr;
  const auto rowWidth =
      static_cast<std::ptrdiff_t>(mStride) / static_cast<std::ptrdiff_t>(sizeof(std::uint32_t));
  return mPixels + y * rowWidth + x;
}

}  // namespace TF
