#include "TFFramework/Controls/Panel.h"

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

LPanel::LPanel(const RCPtr<LControl>& parent, const String& name) : HandlingControl(parent, name) {}

LPanel::~LPanel() = default;

TFRESULT LPanel::Initialize() {
  const TFRESULT result = LScrollView::Initialize();
  if (Failed(result)) return result;
  MakeHandler();
  if (!mParent) return result;
  ThrowIfFailed(mHandler->AddHandler(&LPanel::HandleParentKey, RCPtr<LNotificationDistributor>(mParent),
                                     u"NID_SIBLING_KEY"),
                "TF::LPanel::Initialize");
  return result;
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
