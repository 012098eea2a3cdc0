#pragma once

#include "TFFramework/Controls/DropDownControl.h"
#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/MenuBar.h"
#include "TFFramework/Controls/PopupMenu.h"

namespace TF {

// A face with a menu below it, such as an entry of a menu bar. While one of a row of them is open, the mouse
// opens the others by moving over them. Press, drag and release choose an item in one gesture. Needs the
// child "popupMenu".
//
// Threads: main thread.
class LComboMenu : public HandlingControl<LComboMenu, LDropDownControl>, public IMenuFace {
 public:
  using HandlingControl::HandlingControl;

  // kFailure without its popup.
  TFRESULT Initialize() override;
  TFRESULT OnDescriptorApplied() override;
  void Destroy() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;

  const RCPtr<LPopupMenu>& GetPopup() const { return mPopup; }
  bool IsPopupShown() override;
  void ShowPopup(bool show) override;
  void DragTo(const PointT<std::int32_t>& point) override;

 private:
  void UpdateLook();
  void TakeOver();
  void PlacePopup();
  TFRESULT HandlePopupShown(const RCPtr<LNotificationDistributor>& sender,
                            const RCPtr<LNotification>& notification);
  TFRESULT HandleItemActivated(const RCPtr<LNotificationDistributor>& sender,
                               const RCPtr<LNotification>& notification);

  RCPtr<LPopupMenu> mPopup;
  PointT<double> mPressPoint;
  double mPopupPosition = 0;  // Pixels.
};

}  // namespace TF
