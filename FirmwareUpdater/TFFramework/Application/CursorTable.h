#pragma once

#include <map>
#include <string_view>

#include "Platform/WindowSystem.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// The cursors that a skin can name.
//
// Threads: main thread.
class CursorTable {
 public:
  // Must outlive the table.
  explicit CursorTable(Platform::WindowSystem& windowSystem) : mWindowSystem(windowSystem) {}

  // Platform::kNoCursor, which shows the arrow, for a name without a cursor.
  Platform::CursorId Find(const String& name);

 private:
  Platform::CursorId MakePictureCursor(std::u16string_view resource);

  Platform::WindowSystem& mWindowSystem;
  std::map<String, Platform::CursorId> mLoaded;
};

}  // namespace TF
