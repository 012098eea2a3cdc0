#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

// The control at the top of a dialog's window.
//
// Threads: main thread.
class LDialog : public LControl {
 public:
  using LControl::LControl;

  // What closing by the window's frame gives.
  static constexpr std::int32_t kCancelled = 2;

  // Sends "NID_DIALOG_CLOSING" with an LCancelArgs, and unless a receiver is against it has the window
  // ended with the result and sends "NID_DIALOG_CLOSED".
  void Close(std::int32_t result);
  std::int32_t GetResult() const { return mResult; }

 protected:
  virtual void OnClosed() {}

 private:
  std::int32_t mResult = 0;
};

}  // namespace TF
