#pragma once

#include <SDL_mouse.h>

#include <map>
#include <memory>
#include <vector>

#include "Platform/Desktop/Handles.h"
#include "Platform/WindowSystem.h"

namespace Platform {

// The pictures of the mouse, made when they are first asked for and kept.
class SdlCursors {
 public:
  CursorId GetSystemCursor(SystemCursor cursor);
  CursorId MakeCursor(const PixelView& pixels, const PixelPoint& hotSpot);
  void SetCursor(CursorId cursor);

 private:
  using Handle = std::unique_ptr<SDL_Cursor, Releaser<SDL_FreeCursor>>;

  CursorId Keep(SDL_Cursor* cursor);

  std::vector<Handle> mCursors;
  std::map<SystemCursor, CursorId> mSystemCursors;
};

}  // namespace Platform
