#pragma once

#include <cstdint>
#include <optional>

#include "Platform/PngDecoder.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Graphics/Colorizer.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LBitmapData;

// A decoded image, its pixels 0xAARRGGBB and not premultiplied, that one view at a time may lock.
struct BitmapImage {
  Platform::Picture mPicture;
  bool mLocked = false;
};

// A picture: a rectangle of a decoded image. It owns the image, or is a window into the picture that
// does (a sub-bitmap). Every picture that was loaded stands in one table of the process for as long
// as anybody outside of the table refers to it, so that nothing is decoded twice.
//
// The pixels of a picture that has been drawn must not change: renderers cache by picture.
//
// Threads: main thread.
class LBitmap : public virtual LRefCountedObject {
 public:
  // "::" and a name stands for the resource "GDIPLUS" of that name, in upper case and "_" for ".";
  // anything else is a file. Paths that differ in case alone are one picture. Null when there is
  // nothing there or it cannot be decoded.
  static RCPtr<LBitmap> LoadBitmap(const String& path);

  // Every pixel is the packed form of color. Throws runtime_error when a side is below 1.
  static RCPtr<LBitmap> CreateFilledBitmap(const SizeT<std::int32_t>& size, const LColor& color);
  // Throws domain_error: gradients cannot be drawn.
  static RCPtr<LBitmap> CreateGradientFilledBitmap(const RCPtr<LColorizer>& colorizer, float alphaMod,
                                                   const SizeT<std::int32_t>& size);
  // Filled with the colorizer's colour, its alpha times alphaMod. Throws runtime_error when a side is
  // below 1 or without a colorizer, and for a gradient as above.
  static RCPtr<LBitmap> CreateColorizedBitmap(const RCPtr<LColorizer>& colorizer, float alphaMod,
                                              const SizeT<std::int32_t>& size);
  // A copy of picture or of mask with the colorizer applied; size counts only with neither. Throws
  // domain_error with both.
  static RCPtr<LBitmap> CreateColorizedBitmap(const RCPtr<LColorizer>& colorizer, float alphaMod,
                                              const SizeT<std::int32_t>& size, const RCPtr<LBitmap>& picture,
                                              const RCPtr<LBitmap>& mask);
  // Moves red, green and blue of every pixel towards the colour by the fraction of its alpha times
  // alphaMod, and keeps the picture's alpha. Changes bitmap itself. Throws runtime_error when one of
  // the two is null or the pixels cannot be locked, and for a gradient as above.
  static void ApplyColorizer(const RCPtr<LBitmap>& bitmap, const RCPtr<LColorizer>& colorizer,
                             float alphaMod);

  // A window into this picture, in its coordinates; it may reach beyond the image. A width or height
  // below 1 means the whole of this picture.
  RCPtr<LBitmap> CreateSubBitmap(double x, double y, double width, double height);
  // A picture with pixels of its own; null when this one has none or reaches beyond its image.
  RCPtr<LBitmap> Clone() const;
  // In this picture's coordinates, also outside of its rectangle; all 0 outside of the image.
  LColor GetPixel(std::int32_t x, std::int32_t y) const;
  // A view for reading; of a sub-bitmap the view shows the whole parent. See LBitmapData.
  RCPtr<LBitmapData> LockPixels();

  // The image of this picture or of its parent; null when there is none.
  const BitmapImage* GetImage() const;
  // This picture's rectangle in the image.
  std::int32_t GetX() const { return mX; }
  std::int32_t GetY() const { return mY; }
  std::int32_t GetWidth() const { return mWidth; }
  std::int32_t GetHeight() const { return mHeight; }

  const RCPtr<LBitmap>& GetParent() const { return mParent; }
  // As given to LoadBitmap; empty for a picture that was not loaded.
  const String& GetPath() const { return mPath; }

  TFRESULT ReleaseInternalReferences() override;

 private:
  friend class LBitmapData;
  template <class T, class... Arguments>
  friend RCPtr<T> MakeRC(Arguments&&... arguments);

  LBitmap() = default;
  LBitmap(const String& path, const String& key);
  explicit LBitmap(Platform::Picture picture);

  void Take(Platform::Picture picture);
  bool IsInsideImage() const;

  std::int32_t mX = 0;
  std::int32_t mY = 0;
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  RCPtr<LBitmap> mParent;  // The picture that owns the image; null when this one does.
  String mPath;
  String mKey;  // In the table.
  std::optional<BitmapImage> mImage;
};

}  // namespace TF
