#pragma once

#include "Engine/UpdateProcessor.h"
#include "TFFramework/System/ApplicationBase.h"
#include "TFFramework/Threads/Mutex.h"

// The program's application object. It owns the update processor.
//
// Threads: main thread; RequestExit on any.
class LApplication : public TF::LApplicationBase<LApplication> {
 public:
  LApplication(const TF::RCPtr<TF::LControlFactory>& controlFactory, const TF::String& commandLine);
  ~LApplication() override;

  // Scans for the device and does what the command line asks for, before any screen exists.
  TFRESULT Initialize() override;
  TFRESULT Shutdown() override;
  // False while an update is in progress.
  bool IsExitAllowed() override;
  void OnBeforeMessageLoop() override;
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification) override;

  // Tells on standard error that this version has no screen. The run then ends with the
  // update that it may have started.
  void StartDisplay() override {}
  TFRESULT OpenScreen() override;

  const TF::RCPtr<LUpdateProcessor>& GetUpdateProcessor() const { return mUpdateProcessor; }

  // Ends the run, unless an update is in progress: the request is dropped then.
  void RequestExit();

 private:
  const TF::String mLine;
  TF::Mutex mProcessorMutex;  // Guards these two against RequestExit.
  bool mExitRequestedEarly = false;
  TF::RCPtr<LUpdateProcessor> mUpdateProcessor;
};
