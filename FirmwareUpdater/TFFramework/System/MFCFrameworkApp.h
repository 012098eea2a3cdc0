#pragma once

#include <atomic>
#include <exception>
#include <iostream>
#include <string>
#include <utility>

#include "Platform/InstanceLock.h"
#include "TFFramework/Application/DiagnosticsOptions.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Application/Startup.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

// True for the results of an Initialize that end the run without an error report.
constexpr bool IsSettledResult(TFRESULT result) {
  return result == kRunSettled || result == kStartupEnded0 || result == kStartupEnded1 ||
         result == kStartupEnded2 || result == kStartupEnded3 || result == kStartupEnded16;
}

// The one static object of the process: what has to exist before any application object
// does, and the order of start and stop. T is the program's application class, made from the
// command line.
//
// Threads: main thread; RequestExit on any.
template <class T>
class MFCFrameworkApp : public LStartup {
 public:
  // commandLine is the whole line, program path included.
  explicit MFCFrameworkApp(String commandLine)
      : mCommandLine(std::move(commandLine)), mInstanceLock(std::string(T::kWindowClassName) + "Prevent") {}

  // False when another instance with a window has taken the run over, or when the startup
  // failed; the user has been told then.
  bool InitApplication() {
    try {
      ShowSplash();
      MakeControlFactory();
      mFirstInstance = mInstanceLock.TryAcquire();
      return mFirstInstance || !mInstanceLock.SendCommandLine(ToUtf8(mCommandLine));
    } catch (const std::exception& exception) {
      FailStart(exception.what());
      return false;
    }
  }

  bool InitInstance() {
    ApplyDiagnosticsOptions(ParseDiagnosticsOptions(mCommandLine));
    return true;
  }

  // From the making of the application to its end. What is thrown outside the main loop ends
  // here, like a failed startup.
  void Run() {
    const RCPtr<T> application = MakeApplication();
    if (!application) return;
    try {
      RunApplication(*application);
    } catch (const std::exception& exception) {
      FailStart(exception.what());
    }
    application->Shutdown();
    const MutexLock lock(mApplicationMutex);
    mApplication = nullptr;
  }

  // Asks the run to end as "NID_APP_EXIT_REQ" does.
  void RequestExit() {
    const MutexLock lock(mApplicationMutex);
    mExitRequested = true;
    if (mApplication) mApplication->RequestExit();
  }

  bool IsFirstInstance() const { return mFirstInstance; }

 private:
  RCPtr<T> MakeApplication() {
    const MutexLock lock(mApplicationMutex);
    if (!mExitRequested) mApplication = MakeRC<T>(GetControlFactory(), mCommandLine);
    return mApplication;
  }

  void RunApplication(T& application) {
    application.OnStartup(mCommandLine);
    const TFRESULT result = application.Initialize();
    if (IsSettledResult(result)) return HideSplash();
    ThrowIfFailed(result, "TF::MFCFrameworkApp<class LApplication>::Run");
    if (!FindDisplay(application)) return HideSplash();
    LoadProgramResources();
    ThrowIfFailed(application.TakeDocuments(), "TF::MFCFrameworkApp<class LApplication>::Run");
    application.OnStarted(mCommandLine);
    ThrowIfFailed(application.OpenScreen(), "TF::MFCFrameworkApp<class LApplication>::Run");
    HideSplash();
    ServeLaterStarts();
    application.Run();
    mInstanceLock.StopServing();
  }

  // A program that cannot show anything says so where it can.
  bool FindDisplay(T& application) {
    try {
      application.StartDisplay();
      return true;
    } catch (const std::runtime_error& error) {
      LogRecord(error.what());
      std::cerr << error.what() << std::endl;
      return false;
    }
  }

  void ServeLaterStarts() {
    if (!mFirstInstance) return;
    mInstanceLock.Serve([this](const std::string& commandLine) {
      const MutexLock lock(mApplicationMutex);
      return mApplication && mApplication->TakeCommandLine(commandLine);
    });
  }

  const String mCommandLine;
  Platform::InstanceLock mInstanceLock;
  bool mFirstInstance = true;
  Mutex mApplicationMutex;  // A signal may ask for the exit while the application comes or goes.
  bool mExitRequested = false;
  RCPtr<T> mApplication;
};

}  // namespace TF
