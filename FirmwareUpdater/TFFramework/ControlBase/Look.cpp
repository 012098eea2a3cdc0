#include "TFFramework/ControlBase/Look.h"

#include <algorithm>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

namespace {

constexpr float kLargestSide = 8388608;  // Beyond it a float tells whole pixels no more apart.

// Farther out no screen reaches, and sums stay within the limits of their numbers.
constexpr std::int64_t kFarthest = (1 << 30) - 1;

std::int32_t Limit(std::int64_t coordinate) {
  return static_cast<std::int32_t>(std::clamp(coordinate, -kFarthest, kFarthest));
}

// One axis of a part in a frame.
struct Span {
  Span(std::int64_t start, std::int64_t end) : mStart(Limit(start)), mEnd(Limit(end)) {}

  std::int32_t mStart;
  std::int32_t mEnd;
};

RectT<std::int32_t> ToRect(const Span& x, const Span& y) {
  return {x.mStart, y.mStart, x.mEnd - x.mStart, y.mEnd - y.mStart};
}

// Without an edge of its own a part stands in the middle.
Span PlaceOnAxis(std::int64_t frame, std::int64_t part, std::optional<std::int32_t> nearOffset,
                 std::optional<std::int32_t> farOffset) {
  const std::int64_t farEdge = frame + farOffset.value_or(0);
  if (nearOffset && farOffset) return {*nearOffset, farEdge};
  if (farOffset) return {farEdge - part, farEdge};
  const std::int64_t start = nearOffset ? *nearOffset : (frame - part) / 2;
  return {start, start + part};
}

template <class T>
std::optional<T> If(bool given, T value) {
  return given ? std::optional<T>(value) : std::nullopt;
}

RectT<std::int32_t> PlacePart(const LDockedPart& docked, const SizeT<std::int32_t>& own,
                              const SizeT<std::int32_t>& frame) {
  const Span x =
      PlaceOnAxis(frame.mWidth, docked.Width.value_or(own.mWidth), If(docked.mHasLeft, docked.OffsetLeft),
                  If(docked.mHasRight, docked.OffsetRight));
  const Span y =
      PlaceOnAxis(frame.mHeight, docked.Height.value_or(own.mHeight), If(docked.mHasTop, docked.OffsetTop),
                  If(docked.mHasBottom, docked.OffsetBottom));
  return ToRect(x, y);
}

// The client area on one axis: inside the frame, whatever the offsets say.
Span PlaceClientOnAxis(std::int64_t frame, std::int64_t nearOffset, std::int64_t farOffset) {
  const std::int64_t whole = std::max<std::int64_t>(frame, 0);
  const std::int64_t start = std::clamp<std::int64_t>(nearOffset, 0, whole);
  return {start, start + std::clamp<std::int64_t>(farOffset - start + frame, 0, whole)};
}

RectT<double> ToDouble(const RectT<std::int32_t>& rect) {
  return {static_cast<double>(rect.mX), static_cast<double>(rect.mY), static_cast<double>(rect.mWidth),
          static_cast<double>(rect.mHeight)};
}

float LimitSide(std::int32_t side) {
  return std::clamp(static_cast<float>(side), -kLargestSide, kLargestSide);
}

// Nothing can be drawn outside of a frame.
bool IsVisible(LRenderer& renderer, const RectT<double>& rect) {
  const RenderState* const state = renderer.GetState();
  return state && !IsEmpty(rect) && !IsEmpty(Intersect(rect, state->mClip));
}

// Text edges are placed as floats and cut to whole pixels.
std::int32_t Edge(float relative, std::int32_t absolute, std::int32_t side) {
  const float edge = relative * static_cast<float>(side) + static_cast<float>(absolute);
  return Limit(TruncateToInt32(edge));
}

}  // namespace

LLook::LLook(const ConstRCPtr<LLookDescriptor>& descriptor, const RCPtr<LFont>& font)
    : mDescriptor(descriptor) {
  for (const RCPtr<LDockedPart>& docked : descriptor->mNonClientParts) {
    mNonClientParts.emplace_back(LVisualPart::Of(*docked->mPart));
  }
  mNonClientRects.resize(mNonClientParts.size());
  if (descriptor->mClientPart) mClientPart = LVisualPart::Of(*descriptor->mClientPart->mPart);
  if (!descriptor->mHasText) return;
  mFontText = MakeRC<LFontText>(font, descriptor->TextHAlign, descriptor->TextVAlign);
}

void LLook::SetSize(const SizeT<std::int32_t>& size) {
  if (size == mSize) return;
  mSize = size;
  mClientRect = PlaceClient();
  for (std::size_t i = 0; i < mNonClientParts.size(); ++i) {
    const LDockedPart& docked = *mDescriptor->mNonClientParts[static_cast<std::int32_t>(i)];
    mNonClientRects[i] = PlacePart(docked, mNonClientParts[i]->GetSize(), size);
  }
  if (!mFontText) return;
  const RectT<std::int32_t> text = GetTextRect(size.mWidth, size.mHeight);
  mTextOrigin = {text.mX, text.mY};
  mFontText->SetRectSize({text.mWidth, text.mHeight});
}

// A look that names no client part is all client area.
RectT<std::int32_t> LLook::PlaceClient() const {
  const RCPtr<LDockedPart>& client = mDescriptor->mClientPart;
  if (!client) return {0, 0, mSize.mWidth, mSize.mHeight};
  const Span x = PlaceClientOnAxis(mSize.mWidth, client->OffsetLeft, client->OffsetRight);
  const Span y = PlaceClientOnAxis(mSize.mHeight, client->OffsetTop, client->OffsetBottom);
  return ToRect(x, y);
}

RectT<std::int32_t> LLook::GetTextRect(std::int32_t width, std::int32_t height) const {
  if (!mDescriptor->mHasText) return {};
  const LLookDescriptor& look = *mDescriptor;
  const std::int32_t left = Edge(look.TextLeftRel, look.TextLeftAbs, width);
  const std::int32_t top = Edge(look.TextTopRel, look.TextTopAbs, height);
  return {left, top, Edge(look.TextRightRel, look.TextRightAbs, width) - left,
          Edge(look.TextBottomRel, look.TextBottomAbs, height) - top};
}

void LLook::SetText(const String& text) {
  if (mFontText) mFontText->SetText(text);
}

void LLook::SetFont(const RCPtr<LFont>& font) {
  if (mFontText) mFontText->SetFont(font);
}

void LLook::SetTextForeground(const RCPtr<LVisualPartDescriptor>& part) {
  mGivenForeground = part;
  mTextForeground = nullptr;
}

void LLook::SetWrap(bool wrap) {
  if (mFontText) mFontText->SetWrap(wrap);
}

void LLook::SetOverlay(const RCPtr<LVisualPart>& part, bool hidesClient) {
  mOverlayPart = part;
  mOverlayHidesClient = hidesClient;
}

bool LLook::RenderNonClient(const RCPtr<LRenderer>& renderer, const Region& dirty) {
  const Region region = ToLook(*renderer, dirty);
  bool drawn = false;
  for (std::size_t i = 0; i < mNonClientParts.size(); ++i) {
    drawn |= DrawPart(renderer, region, *mNonClientParts[i], mNonClientRects[i]);
  }
  return drawn;
}

bool LLook::RenderClient(const RCPtr<LRenderer>& renderer, const Region& dirty) {
  const Region region = ToLook(*renderer, dirty);
  bool drawn = false;
  if (mClientPart && !(mOverlayPart && mOverlayHidesClient)) {
    drawn = DrawPart(renderer, region, *mClientPart, mClientRect);
  }
  if (mOverlayPart) drawn |= DrawPart(renderer, region, *mOverlayPart, mClientRect);
  return drawn;
}

bool LLook::RenderText(const RCPtr<LRenderer>& renderer, const Region& dirty, const PointT<double>& offset) {
  if (!mFontText || !mFontText->GetFont()) return true;
  const LColor color = GetTextForeground().GetSolidColor();
  const SizeT<std::int32_t>& size = mFontText->GetRectSize();
  const RectT<double> frame = ToDouble({mTextOrigin.mX, mTextOrigin.mY, size.mWidth, size.mHeight});
  const Region region = ToLook(*renderer, dirty);
  bool drawn = false;
  for (const RectT<std::int32_t>& rect : region) {
    const RectT<double> visible = Intersect(ToDouble(rect), frame);
    if (!IsVisible(*renderer, visible)) continue;
    const CAutoClip clip(renderer, frame, visible, nullptr, true);
    DrawLines(*renderer, color, offset);
    drawn = true;
  }
  return drawn;
}

// From the target's coordinates to those of the look, within its limit.
Region LLook::ToLook(LRenderer& renderer, const Region& dirty) const {
  const RenderState* const state = renderer.GetState();
  const PointT<double> origin = state ? state->mOrigin : PointT<double>();
  Region region = dirty;
  region.Translate({-RoundToInt32(origin.mX), -RoundToInt32(origin.mY)});
  if (mClipRegion) region.Intersect(*mClipRegion);
  return region;
}

bool LLook::DrawPart(const RCPtr<LRenderer>& renderer, const Region& dirty, const LVisualPart& part,
                     const RectT<std::int32_t>& rect) const {
  const RectT<double> frame = ToDouble(rect);
  bool drawn = false;
  for (const RectT<std::int32_t>& touched : dirty) {
    const RectT<double> visible = Intersect(ToDouble(touched), frame);
    if (!IsVisible(*renderer, visible)) continue;
    const CAutoClip clip(renderer, frame, visible, nullptr, true);
    part.Draw(*renderer, {LimitSide(rect.mWidth), LimitSide(rect.mHeight)});
    drawn = true;
  }
  return drawn;
}

// A text's colour is checked before any of it is drawn.
const LVisualPart& LLook::GetTextForeground() {
  const LVisualPartDescriptor& part = mGivenForeground ? *mGivenForeground : *mDescriptor->TextForegroundPart;
  if (!part.mImageFile.IsEmpty() || !part.mMaskFile.IsEmpty()) {
    Throw<std::domain_error>("Bitmap fill for text foreground part not yet implemented.",
                             "TF::LLook::DrawLabelText");
  }
  if (part.mColorizer && !part.mColorizer->IsSolid()) {
    Throw<std::domain_error>("Gradient fill for text foreground part not yet implemented.",
                             "TF::LLook::DrawLabelText");
  }
  if (!mTextForeground) mTextForeground = LVisualPart::Of(part);
  return *mTextForeground;
}

void LLook::DrawLines(LRenderer& renderer, const LColor& color, const PointT<double>& offset) const {
  for (std::int32_t i = 0; i < mFontText->GetLineCount(); ++i) {
    const RectT<float>& line = mFontText->GetLineRect(i);
    const PointT<float> point = {line.mX - static_cast<float>(offset.mX),
                                 line.mY - static_cast<float>(offset.mY)};
    renderer.DrawText(mFontText->GetLine(i), mFontText->GetFont(), point, color);
  }
}

std::uint32_t LLook::GetColorAtPoint(const PointT<double>& point) const {
  const auto colorOf = [&point](const LVisualPart& part, const RectT<std::int32_t>& rect) {
    return part.GetColorAtPoint({point.mX - rect.mX, point.mY - rect.mY},
                                {static_cast<double>(rect.mWidth), static_cast<double>(rect.mHeight)});
  };
  const auto isOpaque = [](std::uint32_t argb) { return argb >> 24 > 0; };
  for (std::size_t i = 0; i < mNonClientParts.size(); ++i) {
    const std::uint32_t color = colorOf(*mNonClientParts[i], mNonClientRects[i]);
    if (isOpaque(color)) return color;
  }
  for (const LVisualPart* part : {static_cast<const LVisualPart*>(mOverlayPart.Get()), mClientPart.Get()}) {
    const std::uint32_t color = part ? colorOf(*part, mClientRect) : LVisualPart::kNothing;
    if (isOpaque(color)) return color;
  }
  return LVisualPart::kNothing;
}

}  // namespace TF
