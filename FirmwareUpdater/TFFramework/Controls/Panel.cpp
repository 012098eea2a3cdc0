#include "TFFramework/Controls/Panel.h"

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

LPanel::LPanel(const RCPtr<LControl>& parent, const String& name) : LScrollView(parent, name) {}

LPanel::~LPanel() = default;

TFRESULT LPanel::Initialize() {
  const TFRESULT result = LScrollView::Initialize();
  if (Failed(result)) return result;
  if (!mHandler) mHandler = MakeRC<LNotificationHandler<LPanel>>(this);
  if (!mParent) return result;
  ThrowIfFailed(mHandler->AddHandler(&LPanel::HandleParentKey, RCPtr<LNotificationDistributor>(mParent),
                                     u"NID_SIBLING_KEY"),
                "TF::LPanel::Initialize");
  return result;
}

void LPanel::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                            const RCPtr<LNotification>& notification) {
  const RCPtr<LControl> held(this);
  LScrollView::OnNotification(sender, notification);
  const RCPtr<LNotificationHandler<LPanel>> handler = mHandler;
  if (handler && !mDestroyed) handler->Dispatch(sender, notification);
}

TFRESULT LPanel::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) {
  if (mHandler) mHandler->RemoveHandler(sender, id);
  return LScrollView::OnDistributorClosing(sender, id);
}

RCPtr<LControl> LPanel::GetNextInTabOrder(const RCPtr<LControl>& child, bool backward) {
  const RCPtr<LControl> next = LScrollView::GetNextInTabOrder(child, backward);
  if (!mParent || !next) return next;
  const std::int32_t from = mChildren.GetIndex(*child, ChildOrder::kTab);
  const std::int32_t to = mChildren.GetIndex(*next, ChildOrder::kTab);
  const bool wraps = backward ? to >= from : to <= from;
  return wraps ? nullptr : next;
}

TFRESULT LPanel::HandleParentKey(const RCPtr<LNotificationDistributor>&,
                                 const RCPtr<LNotification>& notification) {
  const RCPtr<LSiblingKeyParam> param(notification->GetData());
  if (!param || param->mUnhandled == 0 || !IsShown(true) || !IsEnabled(true)) return kNothingDone;
  param->mUnhandled = OnSiblingKey(MakeRC<LKeyParam>(param->mKey));
  return kSuccess;
}

}  // namespace TF
