#pragma once

#include "Engine/UpdateEngineInterface.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

// The driver of a run. It reads the command line, tells the engine which firmware file and
// which device to use, and decides what this run is: a screen, a silent update, or a query
// whose answer is the exit status. It is the only writer of the exit status.
//
// Threads: main thread.
class LUpdateProcessor : public virtual TF::LRefCountedObject {
 public:
  LUpdateProcessor();
  // With an engine of the caller's.
  explicit LUpdateProcessor(TF::RCPtr<LUpdateEngineInterface> engine);
  // Shuts the engine down.
  ~LUpdateProcessor() override;

  // commandLine is the process's whole command line, program path included. kSuccess: go on
  // and show the screen. kRunSettled: the run is over. Throws FailedResultException when the
  // engine cannot be initialized. A silent run blocks here for its whole transfer.
  virtual TFRESULT Initialize(const TF::String& commandLine);
  // The same once more, with the first command line.
  virtual void Reinitialize();
  virtual TF::RCPtr<LUpdateEngineInterface>& GetUpdateEngine(TF::RCPtr<LUpdateEngineInterface>& out);
  virtual bool GetAllowDowngrade();
  // kNothingDone when the value is unchanged.
  virtual TFRESULT SetAllowDowngrade(bool allow);
  // False while an update is in progress.
  virtual bool IsExitAllowed();
  // Asks the run to end, from any thread: a scan gives up and no update starts. False, and
  // nothing happens, while an update is in progress.
  bool RequestExit();

 private:
  bool HasOption(const char16_t* option) const;
  void ResolveFirmwareFile();
  void DefineDevices();
  TFRESULT ReportStatus();
  TFRESULT StartWhatIsWanted();
  void StartUpdate();

  TF::String mCommandLine;
  TF::RCPtr<LUpdateEngineInterface> mUpdateEngine;
  bool mAllowDowngrade = false;
};
