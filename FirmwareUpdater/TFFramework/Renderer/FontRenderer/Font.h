#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// The description of a font, to which no display or font file is needed. There is one object per
// combination for the whole life of the process, so that fonts are compared by pointer.
//
// Threads: main thread.
class LFont : public virtual LRefCountedObject {
 public:
  static constexpr std::int32_t kRegular = 0;
  static constexpr std::int32_t kBold = 1;
  static constexpr std::int32_t kItalic = 2;
  static constexpr std::int32_t kBoldItalic = kBold | kItalic;

  // size in points.
  static RCPtr<LFont> Get(const String& name, float size, std::int32_t style);

  const String& GetName() const { return mName; }
  float GetSize() const { return mSize; }
  std::int32_t GetStyle() const { return mStyle; }

  // Pixels from line to line, up to the top (negative) and down to the bottom, as the application's
  // renderer measures them once. 0 as long as there is no renderer.
  std::int32_t GetHeight();
  std::int32_t GetAscent();
  std::int32_t GetDescent();

 private:
  template <class T, class... Arguments>
  friend RCPtr<T> MakeRC(Arguments&&... arguments);

  LFont(const String& name, float size, std::int32_t style);
  void Measure();

  const String mName;
  const float mSize;
  const std::int32_t mStyle;
  std::int32_t mHeight = kNotMeasured;
  std::int32_t mAscent = 0;
  std::int32_t mDescent = 0;

  static constexpr std::int32_t kNotMeasured = -1;
};

}  // namespace TF
