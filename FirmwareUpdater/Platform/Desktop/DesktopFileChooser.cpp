#include "Platform/Desktop/DesktopFileChooser.h"

#include "Platform/Desktop/FileQuestion.h"
#include "Platform/Desktop/SdlWindowSystem.h"

namespace Platform {

FileChoice DesktopFileChooser::Choose(const FileRequest& request) {
  FileQuestion question(request, [this] { mWindowSystem.Wake(); });
  mWindowSystem.WaitWithoutInput([&] { return question.IsAnswered(); }, [&] { question.Cancel(); });
  return question.TakeAnswer();
}

}  // namespace Platform
