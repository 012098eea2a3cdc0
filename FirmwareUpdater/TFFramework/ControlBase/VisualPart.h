#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/VisualPartDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/Colorizer.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/ResizeType.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LRenderer;

// A picture or a plain colour that looks are drawn from. A picture is tinted once, when the part is made.
//
// Threads: main thread.
class LVisualPart : public virtual LRefCountedObject {
 public:
  // What a point outside of everything reads as: white without any opacity.
  static constexpr std::uint32_t kNothing = 0x00FFFFFF;

  // The part of a descriptor, made at the first call and kept there.
  static const RCPtr<LVisualPart>& Of(const LVisualPartDescriptor& descriptor);

  // Loads the picture and the mask. A picture that cannot be loaded leaves one diagnostics record and a part
  // that draws nothing. Throws domain_error for what LBitmap::CreateColorizedBitmap cannot make.
  explicit LVisualPart(const LVisualPartDescriptor& descriptor);
  // A picture that a program shows in a look. bitmap may be null: the part draws nothing then.
  LVisualPart(const RCPtr<LBitmap>& bitmap, ResizeType resizeType);

  // At the renderer's origin. Throws runtime_error for a part that never named picture or colour.
  void Draw(LRenderer& renderer, const SizeT<float>& size) const;

  // 0xAARRGGBB at a point of the part as it is; kNothing outside of it. Throws runtime_error for a gradient,
  // and for a part that never named picture or colour.
  std::uint32_t GetColorAtPoint(const PointT<double>& point) const;
  // The same for a part that is drawn in another size: what a person sees under the point.
  std::uint32_t GetColorAtPoint(const PointT<double>& point, const SizeT<double>& drawnSize) const;

  // The picture's own size, else the one that the skin gives.
  const SizeT<std::int32_t>& GetSize() const { return mSize; }
  const String& GetName() const { return mName; }
  // Of a part that is only a colour, its opacity times the part's factor. Throws runtime_error for a part
  // without one.
  LColor GetSolidColor() const;

 private:
  RCPtr<LBitmap> LoadPicture(const String& path, const RectT<std::int32_t>& rect);
  void Colorize();
  RectT<float> PlaceColor(const SizeT<float>& size) const;
  std::uint32_t GetFilledColor(const PointT<double>& point, const SizeT<double>& drawnSize) const;
  std::uint32_t FindOpaque(const RectT<double>& area) const;
  std::uint32_t GetStretchedColor(const PointT<double>& point, const SizeT<double>& drawnSize) const;

  String mName;
  RCPtr<LBitmap> mBitmap;  // Null for a part that is only a colour.
  SizeT<std::int32_t> mSize;
  ResizeType mResizeType = ResizeType::kStretch;
  RCPtr<LColorizer> mColorizer;
  float mColorizerAlphaMod = 1;
  RCPtr<LBitmap> mMask;
  bool mPictureMissing = false;
};

}  // namespace TF
