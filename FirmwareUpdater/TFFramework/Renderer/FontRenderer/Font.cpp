#include "TFFramework/Renderer/FontRenderer/Font.h"

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

namespace {

// Never destroyed, since fonts may be asked for until the very end.
RCPtrArray<LFont>& Fonts() {
  static auto* const fonts = new RCPtrArray<LFont>();
  return *fonts;
}

}  // namespace

LFont::LFont(const String& name, float size, std::int32_t style) : mName(name), mSize(size), mStyle(style) {}

RCPtr<LFont> LFont::Get(const String& name, float size, std::int32_t style) {
  for (std::int32_t index = Fonts().GetCount(); index-- > 0;) {
    const RCPtr<LFont>& font = Fonts()[index];
    if (font->mSize == size && font->mStyle == style && font->mName == name) return font;
  }
  const auto font = MakeRC<LFont>(name, size, style);
  Fonts().Add(font);
  return font;
}

std::int32_t LFont::GetHeight() {
  Measure();
  return mHeight < 0 ? 0 : mHeight;
}

std::int32_t LFont::GetAscent() {
  Measure();
  return mAscent;
}

std::int32_t LFont::GetDescent() {
  Measure();
  return mDescent;
}

void LFont::Measure() {
  if (mHeight >= 0) return;
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LRenderer> renderer = application ? application->GetRenderer() : nullptr;
  if (!renderer) return;
  const FontMetrics metrics = renderer->GetFontMetrics(RCPtr<LFont>(this));
  mHeight = metrics.mHeight;
  mAscent = metrics.mAscent;
  mDescent = metrics.mDescent;
}

}  // namespace TF
