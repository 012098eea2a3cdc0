#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "Platform/Clock.h"
#include "Platform/WindowSystem.h"
#include "TFFramework/Application/IconPicture.h"
#include "TFFramework/Notification/NotificationCenter.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

class CursorTable;
class LClipboard;
class LControl;
class LControlFactory;
class LFont;
class LGlobalHotKeyManager;
class LRenderer;
class LRootWindow;

// The framework's application object: what controls and program reach through one
// process-wide pointer.
//
// Threads: main thread; GetApplicationCenter and IsExitRequested on any.
class LFrameworkApp : public virtual LNotificationClient {
 public:
  using RootWindowArray = RCPtrArray<LRootWindow, 1, 0>;

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
  // Chooses a skin and with it the default font, and has all windows take it over. kFailure in a program
  // without documents.
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

  // Windows: FrameworkAppWindows.cpp. What asks for the display has the answer of none before
  // StartWindowSystem: 0, nothing, nowhere.

  // By a name of skins; 0 for one that has no cursor of its own.
  virtual std::uintptr_t GetCursorHandle(const String& name);
  // Of the screen, in pixels.
  virtual RectT<std::int32_t> GetWorkArea();
  // key: a virtual key number. kSuccess.
  virtual TFRESULT GetKeyState(std::uint8_t key, bool& down, bool& toggled);
  // Modifier's bits, as of the input that was handled.
  virtual std::uint32_t GetModifiers();
  // Returns when the user has answered. flags are an icon and a choice of buttons of MessageBoxFlag.
  // Without a display that shows it the text goes to standard error, and kOk comes back.
  virtual Platform::MessageAnswer MessageBox(const String& text, const String& caption, std::uint32_t flags);
  // kNothingDone when it is there already, or not there.
  virtual TFRESULT AddRootWindow(const RCPtr<LRootWindow>& window);
  virtual TFRESULT RemoveRootWindow(const RCPtr<LRootWindow>& window);
  // A further window with a top-level control of the current skin; it is shown. kFailure when the skin
  // has none of this name.
  virtual TFRESULT OpenRootWindow(const String& name);
  // The same above another window.
  virtual TFRESULT OpenChildRootWindow(const String& name, const RCPtr<LRootWindow>& parent);
  virtual void ShowCursor(bool show);
  // On the screen; kFailure where the display does not let.
  virtual TFRESULT SetCursorPosition(std::int32_t x, std::int32_t y);
  // In the active window's client area, or on the screen when none is active.
  virtual PointT<std::int32_t> GetCursorPosition();
  // The program's picture for its windows; nothing without one.
  virtual std::optional<IconPicture> GetIcon();

  // What LRenderer::Create takes: the default renderer.
  virtual std::int32_t GetRendererType();
  // Delivers what waits in the queues, those of the windows included; true when something remains.
  virtual bool ProcessNotifications(bool sendIdle);
  // A failure that is in the list of settled results ends the run without an error.
  virtual TFRESULT Initialize() = 0;
  // The first window, hidden, with its top-level control still to come.
  virtual TFRESULT CreateMainWindow(std::int32_t rendererType);
  virtual void OnBeforeMessageLoop();
  virtual std::int32_t RunMessageLoop() = 0;
  virtual TFRESULT Shutdown();
  virtual bool IsExitAllowed() = 0;

  // The display's windows, cursors and messages. The system must outlive this object.
  void StartWindowSystem(Platform::WindowSystem& windowSystem);
  // Null before.
  Platform::WindowSystem* GetWindowSystem() const { return mWindowSystem; }

  // The first one is the main window's.
  const RootWindowArray& GetRootWindows() const;
  // The one that has the user's attention; null when none has.
  RCPtr<LRootWindow> GetActiveRootWindow() const;
  // That, or else the first; null without windows.
  RCPtr<LRootWindow> GetFrontRootWindow() const;
  // The keys that work wherever the focus is.
  const RCPtr<LGlobalHotKeyManager>& GetHotKeys() const { return mHotKeys; }
  // Null after Shutdown.
  const RCPtr<LClipboard>& GetClipboard() const { return mClipboard; }

  // In the status bar of the first window: kFailure without one. immediately: not behind the texts that
  // wait there.
  TFRESULT SetStatusText(const String& text, bool immediately);
  // Its ordinary text again.
  TFRESULT RestoreStatusText(bool immediately);

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

  // The factory has read its documents: takes the texts, has the clipboard hear edit commands and chooses the
  // skin. kFailure instead of an exception.
  TFRESULT TakeDocuments();

  // Shows the texts for a failed startup, as strings has them, in a message box once the window system
  // runs and on standard error before; why goes to the diagnostics.
  static void ReportStartupError(const char* why, const RCPtr<LStringTable>& strings = nullptr);

 protected:
  // Switches the notification cache on. kFailure instead of an exception.
  TFRESULT RunApplicationStartup();

 private:
  static void WriteMessage(const String& text, const String& caption);
  void ChooseSkin();
  void ReportFault(const char* what);
  void ApplySkinToWindows();
  std::int32_t FindRootWindow(const RCPtr<LRootWindow>& window) const;

  RCPtr<LControlFactory> mControlFactory;
  NarrowString mCommandLine;
  RCPtr<LStringTable> mStringTable;
  RCPtr<LStringTable> mAppStrings;
  std::atomic<bool> mExitRequested{false};
  RCPtr<LNotificationCenter> mApplicationCenter;
  RCPtr<LFont> mDefaultFont;
  Platform::WindowSystem* mWindowSystem = nullptr;
  std::unique_ptr<CursorTable> mCursors;
  // By pointer, since who includes this need not know what a root window is.
  const std::unique_ptr<RootWindowArray> mRootWindows;
  RCPtr<LGlobalHotKeyManager> mHotKeys;
  RCPtr<LClipboard> mClipboard;
};

// What MessageBox takes, by its flags.
namespace MessageBoxFlag {
inline constexpr std::uint32_t kOk = 0x0;
inline constexpr std::uint32_t kOkCancel = 0x1;
inline constexpr std::uint32_t kYesNoCancel = 0x3;
inline constexpr std::uint32_t kYesNo = 0x4;
inline constexpr std::uint32_t kIconError = 0x10;
inline constexpr std::uint32_t kIconQuestion = 0x20;
inline constexpr std::uint32_t kIconWarning = 0x30;
inline constexpr std::uint32_t kIconInformation = 0x40;
}  // namespace MessageBoxFlag

// A text of the running application; empty without one.
String GetApplicationString(const String& key);

// The request to end the program, posted to the center "application".
inline constexpr const char16_t* kAppExitRequest = u"NID_APP_EXIT_REQ";

}  // namespace TF
