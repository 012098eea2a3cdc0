#include <iostream>
#include <string>
#include <vector>

#include "App/Application.h"
#include "App/CommandLineHelp.h"
#include "App/Resources/ProgramResources.h"
#include "Engine/ExitStatus.h"
#include "Platform/CommandLine.h"
#include "Platform/Folders.h"
#include "Platform/MidiDriver.h"
#include "Platform/ProcessExit.h"
#include "Platform/Signals.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/System/MFCFrameworkApp.h"
#include "TFFramework/Threads/Thread.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace {

// Threads of closed ports need a moment to see it.
constexpr std::uint32_t kMidiThreadsWaitMs = 2000;

void RunProgram(std::span<const std::string> arguments) {
  Platform::SetMidiRecordSink([](std::string_view text) { TF::LogRecord(text); });
  TF::MFCFrameworkApp<LApplication> app{
      TF::String(Platform::JoinCommandLine(Platform::ProgramPath(), arguments))};
  const Platform::SignalWatcher signals([&app](int) { app.RequestExit(); });
  if (app.InitApplication() && app.InitInstance()) app.Run();
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  RegisterProgramResources();
  try {
    if (AnswerHelpOrVersion(arguments, std::cout)) return std::cout.flush() ? 0 : 1;
    RunProgram(arguments);
  } catch (const std::exception& exception) {
    TF::LFrameworkApp::ReportStartupError(exception.what());
  }
  TF::LNotificationCenterManager::ReleaseInstance();
  const bool threadsLeft = !Platform::WaitForMidiThreads(kMidiThreadsWaitMs);
  // A thread that did not end may still use the globals, so none of them is destroyed then.
  if (threadsLeft || TF::Thread::HasAbandonedThreads()) Platform::ExitProcess(GetExitStatus());
  return GetExitStatus();
}
