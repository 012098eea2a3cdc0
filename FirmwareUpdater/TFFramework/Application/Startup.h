#pragma once

#include <memory>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LControlFactory;
class LSplashWindow;

// What stands before the application object is made, and after it has gone: the documents that are
// embedded in the program, and the splash window.
//
// Threads: main thread.
class LStartup {
 public:
  LStartup();
  LStartup(const LStartup&) = delete;
  LStartup& operator=(const LStartup&) = delete;
  virtual ~LStartup();

  // The picture that is shown while the program starts; empty without one, as in a program whose
  // resource folder is embedded.
  virtual String GetSplashPath();
  virtual void ShowSplash();
  virtual void HideSplash();

 protected:
  // The factory has no documents yet. Throws runtime_error without a version block.
  void MakeControlFactory();
  // Reads the texts and the skin of the program. That takes as long as a whole run that shows nothing,
  // so such a run goes without them. Throws FailedResultException when it fails.
  void LoadProgramResources();
  // Null before MakeControlFactory.
  const RCPtr<LControlFactory>& GetControlFactory() const { return mControlFactory; }
  // Ends the splash and tells the user, in the user's language if the texts can be read.
  void FailStart(const char* why);

 private:
  RCPtr<LControlFactory> mControlFactory;
  std::unique_ptr<LSplashWindow> mSplash;
};

}  // namespace TF
