#include "Platform/Desktop/SdlCursors.h"

#include <SDL.h>

#include <array>
#include <optional>
#include <string_view>

#include "Platform/Desktop/SdlPixels.h"
#include "Platform/Desktop/SdlVideo.h"

namespace Platform {

namespace {

constexpr std::size_t kSide = 20;

// A letter for each pixel: X black, o white, the rest transparent.
struct Drawing {
  std::array<std::string_view, kSide> mRows;
  PixelPoint mHotSpot;
};

constexpr Drawing kUpArrow{
    {
        "    X               ", "   XoX              ", "  XoooX             ", " XoooooX            ",
        "XoooooooX           ", "XXXXoXXXX           ", "   XoX              ", "   XoX              ",
        "   XoX              ", "   XoX              ", "   XoX              ", "   XoX              ",
        "   XoX              ", "   XoX              ", "   XoX              ", "   XoX              ",
        "   XXX              ", "                    ", "                    ", "                    ",
    },
    {4, 0}};

constexpr Drawing kHelp{
    {
        "X          XXXXXX   ", "XX        XooooooX  ", "XoX      XooXXXXooX ", "XooX     XooX  XooX ",
        "XoooX     XX   XooX ", "XooooX        XooX  ", "XoooooX      XooX   ", "XooooooX    XooX    ",
        "XoooooooX   XooX    ", "XooooXXXX    XX     ", "XoXXooX     XooX    ", "XX XooX     XooX    ",
        "X   XooX     XX     ", "    XooX            ", "     XX             ", "                    ",
        "                    ", "                    ", "                    ", "                    ",
    },
    {0, 0}};

const Drawing* FindDrawing(SystemCursor cursor) {
  switch (cursor) {
    case SystemCursor::kUpArrow:
      return &kUpArrow;
    case SystemCursor::kHelp:
      return &kHelp;
    default:
      return nullptr;
  }
}

SDL_SystemCursor ToSdlCursor(SystemCursor cursor) {
  switch (cursor) {
    case SystemCursor::kIBeam:
      return SDL_SYSTEM_CURSOR_IBEAM;
    case SystemCursor::kWait:
      return SDL_SYSTEM_CURSOR_WAIT;
    case SystemCursor::kCross:
      return SDL_SYSTEM_CURSOR_CROSSHAIR;
    case SystemCursor::kSizeAll:
      return SDL_SYSTEM_CURSOR_SIZEALL;
    case SystemCursor::kSizeNwse:
      return SDL_SYSTEM_CURSOR_SIZENWSE;
    case SystemCursor::kSizeNesw:
      return SDL_SYSTEM_CURSOR_SIZENESW;
    case SystemCursor::kSizeWe:
      return SDL_SYSTEM_CURSOR_SIZEWE;
    case SystemCursor::kSizeNs:
      return SDL_SYSTEM_CURSOR_SIZENS;
    case SystemCursor::kNo:
      return SDL_SYSTEM_CURSOR_NO;
    case SystemCursor::kHand:
      return SDL_SYSTEM_CURSOR_HAND;
    case SystemCursor::kAppStarting:
      return SDL_SYSTEM_CURSOR_WAITARROW;
    default:
      return SDL_SYSTEM_CURSOR_ARROW;
  }
}

std::uint32_t PixelOf(char letter) {
  constexpr std::uint32_t kBlack = 0xFF000000;
  constexpr std::uint32_t kWhite = 0xFFFFFFFF;
  if (letter == 'X') return kBlack;
  return letter == 'o' ? kWhite : 0;
}

}  // namespace

CursorId SdlCursors::GetSystemCursor(SystemCursor cursor) {
  const auto known = mSystemCursors.find(cursor);
  if (known != mSystemCursors.end()) return known->second;
  CursorId made = kNoCursor;
  if (const Drawing* const drawing = FindDrawing(cursor)) {
    std::vector<std::uint32_t> pixels;
    for (const std::string_view row : drawing->mRows)
      for (const char letter : row) pixels.push_back(PixelOf(letter));
    made = MakeCursor({pixels.data(), kSide, kSide, kSide * sizeof(std::uint32_t)}, drawing->mHotSpot);
  } else {
    made = Keep(SDL_CreateSystemCursor(ToSdlCursor(cursor)));
  }
  mSystemCursors.emplace(cursor, made);
  return made;
}

CursorId SdlCursors::MakeCursor(const PixelView& pixels, const PixelPoint& hotSpot) {
  if (pixels.mWidth <= 0 || pixels.mHeight <= 0) return kNoCursor;
  // SDL hands the pixels to X11 as they are, and there premultiplied ones are wanted.
  const SdlSurfaceHandle picture =
      IsOnX11() ? ViewSurface(pixels, SDL_PIXELFORMAT_ARGB8888) : StraightCopy(pixels);
  return Keep(SDL_CreateColorCursor(picture.get(), hotSpot.mX, hotSpot.mY));
}

void SdlCursors::SetCursor(CursorId cursor) {
  if (cursor == kNoCursor) cursor = GetSystemCursor(SystemCursor::kArrow);
  SDL_SetCursor(reinterpret_cast<SDL_Cursor*>(cursor));
}

CursorId SdlCursors::Keep(SDL_Cursor* cursor) {
  if (!cursor) return kNoCursor;
  mCursors.emplace_back(cursor);
  return reinterpret_cast<CursorId>(cursor);
}

}  // namespace Platform
