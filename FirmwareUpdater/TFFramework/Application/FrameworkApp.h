#pragma once

#include <atomic>
#include <cstdint>

#include "Platform/Clock.h"
#include "TFFramework/Notification/NotificationCenter.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

class LControl;
class LControlFactory;
class LFont;
class LRenderer;

// The framework's application object: what controls and program reach through one
// process-wide pointer.
//
// Threads: main thread; GetApplicationCenter and IsExitRequested on any.
class LFrameworkApp : public virtual LNotificationClient {
 public:
  // A program without documents: it has neither texts nor skins.
  explicit LFrameworkApp(const String& commandLine);
  LFrameworkApp(const RCPtr<LControlFactory>& controlFactory, const String& commandLine);
  ~LFrameworkApp() override;

  // The application of this process; null before it is made and after it has gone.
  static LFrameworkApp* GetInstance();

  // Takes "NID_APP_EXIT_REQ" and ignores everything else.
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override;
  virtual void OnStartup(const String& commandLine);
  virtual void OnStarted(const String& commandLine);
  virtual void OnSecondInstance(const String& commandLine);
  // The main loop, with what was posted before and after it. An exception that leaves the
  // loop is reported to the user and asks for the exit.
  virtual TFRESULT Run();
  virtual bool IsExitRequested();
  virtual String GetCompanyName() = 0;
  virtual String GetProductName() = 0;
  virtual String GetProductVersion() = 0;
  virtual String GetSettingsVersion();
  virtual String GetApplicationName();
  virtual String GetMainControlName();
  // The user's full language number.
  virtual std::uint32_t GetLanguage() = 0;
  // See ApplicationFolders.h for the ids.
  virtual String GetFolder(std::int32_t id);
  // Family, points and style of the system's texts. Never fails, and touches no display.
  virtual TFRESULT GetSystemFont(String& name, float& size, std::int32_t& style);
  // Of the first window; null while there is none.
  virtual RCPtr<LRenderer> GetRenderer();
  // Of the skins in the program's document, counted from 0.
  virtual std::int32_t GetCurrentSkinIndex();
  // Chooses a skin and with it the default font. kFailure in a program without documents.
  virtual TFRESULT SetSkin(std::int32_t index);
  // Seconds since the start.
  virtual double GetTime() = 0;
  // Milliseconds of a clock that wraps.
  virtual std::uint32_t GetTickCount() = 0;
  // kSuccess.
  virtual TFRESULT GetLocalTime(Platform::LocalTime& time);
  // A top-level control of the current skin that stands in no window; null when the skin has none of this
  // name. Throws runtime_error for a control class that is not registered.
  virtual RCPtr<LControl> CreateControl(const String& name);
  // What LRenderer::Create takes: the default renderer.
  virtual std::int32_t GetRendererType();
  // Delivers what waits in the queues; true when something remains.
  virtual bool ProcessNotifications(bool sendIdle);
  // A failure that is in the list of settled results ends the run without an error.
  virtual TFRESULT Initialize() = 0;
  virtual void OnBeforeMessageLoop();
  virtual std::int32_t RunMessageLoop() = 0;
  virtual TFRESULT Shutdown();
  virtual bool IsExitAllowed() = 0;

  const RCPtr<LNotificationCenter>& GetApplicationCenter() const { return mApplicationCenter; }
  const NarrowString& GetCommandLine() const { return mCommandLine; }
  // Null after Shutdown.
  const RCPtr<LControlFactory>& GetControlFactory() const { return mControlFactory; }
  // These three are null before TakeDocuments: the framework's texts,
  const RCPtr<LStringTable>& GetStringTable() const { return mStringTable; }
  // the application's own texts, which may be missing after it too,
  const RCPtr<LStringTable>& GetApplicationStrings() const { return mAppStrings; }
  // and the font of the skin.
  const RCPtr<LFont>& GetDefaultFont() const { return mDefaultFont; }

  // The factory has read its documents: takes the texts and chooses the skin. kFailure instead of an
  // exception.
  TFRESULT TakeDocuments();

  // Shows the texts for a failed startup, as strings has them; why goes to the diagnostics.
  static void ReportStartupError(const char* why, const RCPtr<LStringTable>& strings = nullptr);

 protected:
  // Switches the notification cache on. kFailure instead of an exception.
  TFRESULT RunApplicationStartup();

 private:
  void ChooseSkin();

  RCPtr<LControlFactory> mControlFactory;
  NarrowString mCommandLine;
  RCPtr<LStringTable> mStringTable;
  RCPtr<LStringTable> mAppStrings;
  std::atomic<bool> mExitRequested{false};
  RCPtr<LNotificationCenter> mApplicationCenter;
  RCPtr<LFont> mDefaultFont;
};

// A text of the running application; empty without one.
String GetApplicationString(const String& key);

// The request to end the program, posted to the center "application".
inline constexpr const char16_t* kAppExitRequest = u"NID_APP_EXIT_REQ";

}  // namespace TF
