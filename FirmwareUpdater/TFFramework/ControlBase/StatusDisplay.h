#pragma once

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// The control that shows what the program is about to do, in a window's status line: the top control's child
// of the name kName.
class IStatusDisplay {
 public:
  static constexpr const char16_t* kName = u"statusBar";

  IStatusDisplay() = default;
  IStatusDisplay(const IStatusDisplay&) = delete;
  IStatusDisplay& operator=(const IStatusDisplay&) = delete;
  virtual ~IStatusDisplay() = default;

  // Any thread: what shows when nothing else is to be said.
  virtual String GetDefaultText() const = 0;
  // Main thread: shows it before it returns; texts that wait are dropped.
  virtual void SetTextNow(const String& text) = 0;
  // Any thread: shows it at the next idle pass, unless a later text comes before that.
  virtual void PostText(const String& text) = 0;
};

}  // namespace TF
