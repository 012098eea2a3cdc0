#include "TFFramework/Application/CursorTable.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "TFFramework/Application/IconPicture.h"

namespace TF {

namespace {

using Platform::SystemCursor;

struct NamedCursor {
  std::u16string_view mName;
  SystemCursor mCursor;
};

constexpr std::array<NamedCursor, 14> kSystemCursors{{
    {u"UI_CURSOR_ARROW", SystemCursor::kArrow},
    {u"UI_CURSOR_IBEAM", SystemCursor::kIBeam},
    {u"UI_CURSOR_WAIT", SystemCursor::kWait},
    {u"UI_CURSOR_CROSS", SystemCursor::kCross},
    {u"UI_CURSOR_UP_ARROW", SystemCursor::kUpArrow},
    {u"UI_CURSOR_SIZE_ALL", SystemCursor::kSizeAll},
    {u"UI_CURSOR_SIZE_NWSE", SystemCursor::kSizeNwse},
    {u"UI_CURSOR_SIZE_NESW", SystemCursor::kSizeNesw},
    {u"UI_CURSOR_SIZE_WE", SystemCursor::kSizeWe},
    {u"UI_CURSOR_SIZE_NS", SystemCursor::kSizeNs},
    {u"UI_CURSOR_NO_DROP", SystemCursor::kNo},
    {u"UI_CURSOR_HAND", SystemCursor::kHand},
    {u"UI_CURSOR_APP_STARTING", SystemCursor::kAppStarting},
    {u"UI_CURSOR_HELP", SystemCursor::kHelp},
}};

// Cursors that no system has: pictures of the program.
constexpr std::array<std::pair<std::u16string_view, std::u16string_view>, 2> kResourceCursors{{
    {u"UI_CURSOR_DROP_MOVE", u"102"},
    {u"UI_CURSOR_DROP_COPY", u"103"},
}};

constexpr std::int32_t kCursorSide = 32;  // Pixels.

}  // namespace

Platform::CursorId CursorTable::Find(const String& name) {
  const auto system = std::ranges::find(kSystemCursors, name.View(), &NamedCursor::mName);
  if (system != kSystemCursors.end()) return mWindowSystem.GetSystemCursor(system->mCursor);
  for (const auto& [cursorName, resource] : kResourceCursors) {
    if (name != cursorName) continue;
    const auto [place, isNew] = mLoaded.try_emplace(name, Platform::kNoCursor);
    if (isNew) place->second = MakePictureCursor(resource);
    return place->second;
  }
  return Platform::kNoCursor;
}

Platform::CursorId CursorTable::MakePictureCursor(std::u16string_view resource) {
  const auto picture = LoadIconResource(LIconGroup::Kind::kCursor, resource, kCursorSide);
  if (!picture) return Platform::kNoCursor;
  return mWindowSystem.MakeCursor(picture->GetView(), {picture->mHotSpot.mX, picture->mHotSpot.mY});
}

}  // namespace TF
