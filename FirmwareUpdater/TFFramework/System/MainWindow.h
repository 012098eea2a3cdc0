#pragma once

#include <cstdint>
#include <string>

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/System/OSWindow.h"

namespace TF {

class LFrameworkApp;

// As the layout of a window's top control asks for: what has a fixed size, or limits that follow other
// controls on both axes, cannot be resized. Whether the window can be maximized follows from the limits that
// the display is told.
bool IsResizable(const LayoutValues& layout);

// A window for a top-level control of the current skin, hidden, with renderer and root window, of the size
// that the skin gives. Null when the display gives none. Throws runtime_error for an unknown name.
RCPtr<OSWindow> MakeControlWindow(LFrameworkApp& application, MessageLoop& messageLoop, OSWindow::Role role,
                                  const RCPtr<OSWindow>& parent, const String& controlName,
                                  std::int32_t rendererType);

// Shows the main window where the skin wants it, or, unless that cannot be, where it was when the program
// ran last; from now on its end stores the place below the section. The window has its top control.
void ShowMainWindow(OSWindow& window, LFrameworkApp& application, const std::string& section);

// Shows a further window with a top-level control of the current skin, above parent if there is one.
// kFailure when there can be none.
TFRESULT OpenFurtherWindow(LFrameworkApp& application, MessageLoop& messageLoop, const String& controlName,
                           const RCPtr<LRootWindow>& parent);

// Ends all windows of the application, the main window last.
void CloseWindows(LFrameworkApp& application);

}  // namespace TF
