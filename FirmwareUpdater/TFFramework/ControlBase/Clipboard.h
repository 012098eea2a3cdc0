#pragma once

#include <cstdint>

#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationHandler.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace Platform {
class Clipboard;
}

namespace TF {

// What LControl::CanPerformEdit and PerformEdit take.
namespace EditOperation {
inline constexpr std::int32_t kDelete = 0;
inline constexpr std::int32_t kCut = 1;
inline constexpr std::int32_t kCopy = 2;
inline constexpr std::int32_t kPaste = 3;
}  // namespace EditOperation

String StringToString(const String& text);

// A text that can be a tag and be put on the clipboard.
using LTextObject = LWrapperStringable<String, StringToString, LTaggableObject>;

// Hands edit commands to the control with the focus, and objects to and from the clipboard of the desktop.
//
// Threads: main thread.
class LClipboard : public LNotificationClient {
 public:
  // Takes the edit commands of the application's center. kFailure instead of a runtime_error; throws
  // FailedResultException when there is no center to take them from.
  TFRESULT Initialize();

  // Null only forgets what is kept here. Other programs get the object's text; nothing, when it has none.
  // kFailure when the desktop does not take it: inside the program it is there all the same, unless
  // something else comes. kNothingDone from within itself.
  TFRESULT SetContents(const RCPtr<LTaggableObject>& object);
  // The object itself when it was set here, and an LTextObject when another program has put a text there.
  RCPtr<LTaggableObject> GetContents();

  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override;
  TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) override;

 private:
  TFRESULT HandleCut(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&);
  TFRESULT HandleCopy(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&);
  TFRESULT HandlePaste(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&);
  TFRESULT HandleDelete(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&);
  void OnEditRequest(std::int32_t operation);
  void AddHandlers();
  TFRESULT HandOver(const RCPtr<LTaggableObject>& object);

  RCPtr<LNotificationHandler<LClipboard>> mHandlers;
  std::uint32_t mLastSequence = 0;
  RCPtr<LTaggableObject> mContents;
  bool mInitialized = false;
  bool mSetting = false;
};

}  // namespace TF
