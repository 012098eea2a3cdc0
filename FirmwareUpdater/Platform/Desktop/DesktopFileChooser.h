#pragma once

#include "Platform/FileChooser.h"

namespace Platform {

class SdlWindowSystem;

// The FileChooser portal, or zenity where no portal answers.
class DesktopFileChooser : public FileChooser {
 public:
  explicit DesktopFileChooser(SdlWindowSystem& windowSystem) : mWindowSystem(windowSystem) {}

  FileChoice Choose(const FileRequest& request) override;

 private:
  SdlWindowSystem& mWindowSystem;
};

}  // namespace Platform
