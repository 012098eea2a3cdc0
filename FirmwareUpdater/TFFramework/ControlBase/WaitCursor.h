#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LRootWindow;

// Shows, as long as it lives, that the program is busy: the wait cursor over the window in front, and a
// text in its status bar. What waits in the queues is delivered before the work begins.
//
// Threads: main thread.
class LWaitCursor {
 public:
  // Throws what the receivers of those throw; the cursor is as before then.
  explicit LWaitCursor(const String& text);
  LWaitCursor(const LWaitCursor&) = delete;
  LWaitCursor& operator=(const LWaitCursor&) = delete;
  ~LWaitCursor();

 private:
  void Restore();

  RCPtr<LRootWindow> mWindow;
  std::uintptr_t mCursorBefore = 0;
};

}  // namespace TF
