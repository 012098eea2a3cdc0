#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Renderer/FontRenderer/Font.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A text in its font, broken into lines that are placed in a rectangle. Measures with the renderer of the
// application's first window; without one every width is 0.
//
// Lines break at line feeds and, when wrapping, at blanks and behind hyphens where the width ends; a word
// that is wider than the rectangle breaks inside, at least one character a line.
//
// Threads: main thread.
class LFontText : public virtual LRefCountedObject {
 public:
  LFontText(const RCPtr<LFont>& font, float hAlign, float vAlign);

  // Each forgets the lines when the value changes.
  void SetText(const String& text);
  void SetFont(const RCPtr<LFont>& font);
  void SetRectSize(const SizeT<std::int32_t>& size);
  void SetWrap(bool wrap);

  const String& GetText() const { return mText; }
  const RCPtr<LFont>& GetFont() const { return mFont; }
  bool IsWrapping() const { return mWrap; }
  const SizeT<std::int32_t>& GetRectSize() const { return mRectSize; }

  // At least 1: an empty text has one empty line.
  std::int32_t GetLineCount() const;
  // index from 0 to GetLineCount() - 1.
  const String& GetLine(std::int32_t index) const;
  // In pixels from the rectangle's corner.
  const RectT<float>& GetLineRect(std::int32_t index) const;

  // Pixels that the widest line takes when nothing wraps.
  std::int32_t GetNaturalWidth() const;
  // Pixels that the lines take in a rectangle of this width.
  std::int32_t GetHeightForWidth(std::int32_t width) const;
  // What all lines together cover, from the rectangle's corner.
  RectT<std::int32_t> GetTextBounds() const;

 private:
  std::vector<std::u16string_view> MakeLines(float width) const;
  void Update() const;
  void Forget();

  String mText;
  RCPtr<LFont> mFont;
  const float mHAlign;  // 0 left, 0.5 centre, 1 right.
  const float mVAlign;  // 0 top, 0.5 centre, 1 bottom.
  bool mWrap = false;
  SizeT<std::int32_t> mRectSize;
  // Made when they are first asked for; no lines before that.
  mutable std::vector<String> mLines;
  mutable std::vector<RectT<float>> mLineRects;
  mutable bool mIsMeasured = false;  // They were made with a renderer.
};

}  // namespace TF
