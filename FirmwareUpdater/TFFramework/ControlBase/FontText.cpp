#include "TFFramework/ControlBase/FontText.h"

#include <algorithm>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/LineBreaker.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

namespace {

// What makes a whole number of pixels out of a width that is a little more.
constexpr float kWidthRoundUp = 0.99F;

RCPtr<LRenderer> GetMeasuringRenderer() {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  return application ? application->GetRenderer() : nullptr;
}

// From the text's origin to its right edge.
float MeasureLine(const String& line, const RCPtr<LFont>& font) {
  const RCPtr<LRenderer> renderer = GetMeasuringRenderer();
  if (!renderer) return 0;
  const RectT<float> rect = renderer->MeasureText(line, font);
  return rect.mX > 0 ? rect.mX + rect.mWidth : rect.mWidth;
}

}  // namespace

LFontText::LFontText(const RCPtr<LFont>& font, float hAlign, float vAlign)
    : mFont(font), mHAlign(hAlign), mVAlign(vAlign) {}

void LFontText::SetText(const String& text) {
  if (text == mText) return;
  mText = text;
  Forget();
}

void LFontText::SetFont(const RCPtr<LFont>& font) {
  if (font == mFont) return;
  mFont = font;
  Forget();
}

void LFontText::SetRectSize(const SizeT<std::int32_t>& size) {
  if (size == mRectSize) return;
  mRectSize = size;
  Forget();
}

void LFontText::SetWrap(bool wrap) {
  if (wrap == mWrap) return;
  mWrap = wrap;
  Forget();
}

std::int32_t LFontText::GetLineCount() const {
  Update();
  return static_cast<std::int32_t>(mLines.size());
}

const String& LFontText::GetLine(std::int32_t index) const {
  Update();
  return mLines.at(static_cast<std::size_t>(index));
}

const RectT<float>& LFontText::GetLineRect(std::int32_t index) const {
  Update();
  return mLineRects.at(static_cast<std::size_t>(index));
}

std::int32_t LFontText::GetNaturalWidth() const {
  if (!mFont) return 0;
  float widest = 0;
  for (const std::u16string_view line : SplitLines(mText)) {
    widest = std::max(widest, MeasureLine(String(line), mFont));
  }
  return TruncateToInt32(widest + kWidthRoundUp);
}

std::int32_t LFontText::GetHeightForWidth(std::int32_t width) const {
  if (!mFont) return 0;
  const auto lines = static_cast<double>(MakeLines(static_cast<float>(width)).size());
  return RoundToInt32(lines * mFont->GetHeight());
}

RectT<std::int32_t> LFontText::GetTextBounds() const {
  Update();
  float left = mLineRects[0].mX;
  float right = mLineRects[0].GetRight();
  for (const RectT<float>& line : mLineRects) {
    left = std::min(left, line.mX);
    right = std::max(right, line.GetRight());
  }
  const float top = mLineRects.front().mY;
  const float bottom = mLineRects.back().GetBottom();
  const std::int32_t x = RoundToInt32(left);
  const std::int32_t y = RoundToInt32(top);
  return {x, y, RoundToInt32(right) - x, RoundToInt32(bottom) - y};
}

std::vector<std::u16string_view> LFontText::MakeLines(float width) const {
  if (!mWrap || !mFont) return SplitLines(mText);
  return BreakLines(mText, width,
                    [this](std::u16string_view line) { return MeasureLine(String(line), mFont); });
}

void LFontText::Update() const {
  if (!mLines.empty() && mIsMeasured) return;
  const bool canMeasure = GetMeasuringRenderer() != nullptr;
  if (!mLines.empty() && !canMeasure) return;
  mIsMeasured = canMeasure;
  mLineRects.clear();
  const auto lines = MakeLines(static_cast<float>(mRectSize.mWidth));
  mLines.assign(lines.begin(), lines.end());
  const float lineHeight = mFont ? static_cast<float>(mFont->GetHeight()) : 0;
  const float block = lineHeight * static_cast<float>(mLines.size());
  float y = (static_cast<float>(mRectSize.mHeight) - block) * mVAlign;
  for (const String& line : mLines) {
    const float width = mFont ? MeasureLine(line, mFont) : 0;
    mLineRects.push_back({(static_cast<float>(mRectSize.mWidth) - width) * mHAlign, y, width, lineHeight});
    y += lineHeight;
  }
}

void LFontText::Forget() {
  mLines.clear();
  mLineRects.clear();
}

}  // namespace TF
