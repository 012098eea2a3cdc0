#pragma once

namespace TF {

// What a popup asks of the bar that its menu hangs on.
//
// Threads: main thread.
class IMenuBar {
 public:
  IMenuBar() = default;
  IMenuBar(const IMenuBar&) = delete;
  IMenuBar& operator=(const IMenuBar&) = delete;
  virtual ~IMenuBar() = default;

  // To the control that had it before the bar.
  virtual void GiveFocusBack() = 0;
};

}  // namespace TF
