#include <iostream>
#include <string>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "Platform/CommandLine.h"
#include "Platform/Folders.h"
#include "Platform/Signals.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/System/MFCFrameworkApp.h"
#include "Tools/Gallery/GalleryApplication.h"

// A window with every ability of the framework's controls, to play with and to drive by programs: each
// thing that happens shows as a line in the window and on standard output.
int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  RegisterProgramResources();
  try {
    TF::MFCFrameworkApp<LGalleryApplication> app{
        TF::String(Platform::JoinCommandLine(Platform::ProgramPath(), arguments))};
    const Platform::SignalWatcher signals([&app](int) { app.RequestExit(); });
    if (app.InitApplication() && app.InitInstance()) app.Run();
  } catch (const std::exception& exception) {
    std::cerr << "tessel-gallery: " << exception.what() << std::endl;
    return 1;
  }
  TF::LNotificationCenterManager::ReleaseInstance();
  return 0;
}
