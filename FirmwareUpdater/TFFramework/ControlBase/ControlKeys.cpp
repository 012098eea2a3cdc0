#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

constexpr const char16_t* kSiblingKey = u"NID_SIBLING_KEY";
constexpr std::uint32_t kTabKey = 0x09;

bool IsTab(const KeyCode& key) {
  const bool isPress = (key.code & KeyCode::kPressed) != 0 && (key.code & KeyCode::kNoKey) == 0;
  return isPress && (key.code & KeyCode::kVirtualKeyMask) == kTabKey << KeyCode::kVirtualKeyShift;
}

RCPtr<LControl> LastOf(const RCPtrArray<LControl>& path) {
  return path.GetCount() > 0 ? path[path.GetCount() - 1] : RCPtr<LControl>();
}

// A listener and where it stands among the children.
struct KeyClient {
  std::int32_t mPosition;
  std::int32_t mIndex;
  bool mIsFocusable;
};

}  // namespace

void LControl::TakeHotKeys() {
  mHotKeys = mStringSection ? ReadHotKeys(*mStringSection, u"LHK") : HotKeyMap();
}

void LControl::KeyDown(const RCPtr<LKeyParam>& param) {
  if (!param || !IsUsable()) return;
  const RCPtr<LControl> held(this);
  const auto sibling = MakeRC<LSiblingKeyParam>(param->mKey, held);
  Send(LNotification::Create(kSiblingKey, sibling));
  if (mDestroyed || sibling->mUnhandled == 0) return;
  if (OnKeyDown(param) != kNothingDone || mDestroyed) return;
  param->mPath.Add(held);
  if (!IsTab(param->mKey)) {
    PassKeyUp(param);
  } else if (!mWantsTab) {
    PassTabUp(param);
  }
}

void LControl::PassKeyUp(const RCPtr<LKeyParam>& param) {
  if (const RCPtr<LControl> parent = mParent) return parent->OnChildKeyDown(param);
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) window->ProcessUnhandledKey(param);
}

void LControl::PassTabUp(const RCPtr<LKeyParam>& param) {
  if (const RCPtr<LControl> parent = mParent) return parent->OnChildTabKey(param);
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) window->ProcessTab(param);
}

TFRESULT LControl::OnKeyDown(const RCPtr<LKeyParam>&) {
  return kNothingDone;
}

void LControl::OnChildKeyDown(const RCPtr<LKeyParam>& param) {
  const RCPtr<LControl> held(this);
  if (OnSiblingKey(param) != kNothingDone || mDestroyed) return;
  param->mPath.Add(held);
  PassKeyUp(param);
}

TFRESULT LControl::OnSiblingKey(const RCPtr<LKeyParam>& param) {
  const RCPtr<LNotificationDistributor> held(this);
  const NotificationId id = GetNotificationID(kSiblingKey);
  const RCPtr<LNotificationClientPool> pool = FindPool(id);
  if (!pool || pool->GetCount() == 0) return kNothingDone;
  RCPtrArray<LNotificationReceiver> clients;
  std::vector<std::int32_t> order;
  CollectKeyClients(param, clients, order);
  const RCPtr<LControl> sender = LastOf(param->mPath);
  const auto sibling = MakeRC<LSiblingKeyParam>(param->mKey, sender);
  const RCPtr<LNotification> notification = LNotification::Create(id, sibling);
  for (auto place = order.rbegin(); place != order.rend(); ++place) {
    const RCPtr<LNotificationReceiver> client = clients[*place];
    // A listener before it may have taken this one away.
    if (RCPtr<LControl>(client) == sender || !pool->Find(client.Get())) continue;
    client->OnNotification(held, notification);
    if (sibling->mUnhandled == 0) return kSuccess;
  }
  return kNothingDone;
}

void LControl::CollectKeyClients(const RCPtr<LKeyParam>& param, RCPtrArray<LNotificationReceiver>& clients,
                                 std::vector<std::int32_t>& indices) {
  const RCPtr<LNotificationClientPool> pool = FindPool(GetNotificationID(kSiblingKey));
  std::vector<KeyClient> found;
  std::int32_t foreign = std::numeric_limits<std::int32_t>::min();
  for (std::int32_t index = 0; pool && index < pool->GetCount(); ++index) {
    const RCPtr<LNotificationReceiver> client = pool->GetReceiverAt(index);
    if (!client) continue;
    const RCPtr<LControl> control(client);
    const std::int32_t place = control ? mChildren.GetIndex(*control, ChildOrder::kTab) : -1;
    found.push_back(
        {place < 0 ? foreign++ : place, clients.GetCount(), control && !control->IsNotFocusable()});
    clients.Add(client);
  }
  const auto isBefore = [](const KeyClient& left, const KeyClient& right) {
    return left.mPosition < right.mPosition;
  };
  std::stable_sort(found.begin(), found.end(), isBefore);
  const auto isFocusable = [](const KeyClient& client) { return client.mIsFocusable; };
  const auto focusable = std::find_if(found.begin(), found.end(), isFocusable);
  const RCPtr<LControl> sender = LastOf(param->mPath);
  const std::int32_t senderPlace = sender ? mChildren.GetIndex(*sender, ChildOrder::kTab) : -1;
  const auto isBehindSender = [senderPlace](const KeyClient& client) {
    return client.mPosition > senderPlace;
  };
  std::stable_partition(focusable, found.end(), isBehindSender);
  for (const KeyClient& client : found) indices.push_back(client.mIndex);
}

TFRESULT LControl::HandleSiblingKey(const RCPtr<LNotificationDistributor>&,
                                    const RCPtr<LNotification>& notification) {
  const RCPtr<LSiblingKeyParam> param(notification->GetData());
  if (!param || !IsUsable()) return kNothingDone;
  const String* const found = FindHotKey(mHotKeys, param->mKey);
  if (!found) return kNothingDone;
  const RCPtr<LControl> held(this);
  const String name = *found;
  param->mUnhandled = 0;
  Send(LNotification::Create(name.GetText(), param));
  return kNothingDone;
}

bool LControl::HasWrapped(const LControl& child, const LControl& next, bool backward) const {
  const std::int32_t from = mChildren.GetIndex(child, ChildOrder::kTab);
  const std::int32_t to = mChildren.GetIndex(next, ChildOrder::kTab);
  return backward ? to >= from : to <= from;
}

void LControl::OnChildTabKey(const RCPtr<LKeyParam>& param) {
  const RCPtr<LControl> held(this);
  const bool backward = (param->mKey.code & KeyCode::kShift) != 0;
  if (param->mKey.code & KeyCode::kCtrl) {
    KeyCode plain;
    plain.code = kTabKey | (backward ? KeyCode::kShift : 0);
    const auto climbing = MakeRC<LKeyParam>(plain, false);
    climbing->mPath.Add(held);
    return PassTabUp(climbing);
  }
  RCPtr<LControl> child = LastOf(param->mPath);
  RCPtr<LControl> next = GetNextInTabOrder(child, backward);
  for (std::int32_t left = GetChildCount(); next && !(next == child) && left > 0; --left) {
    if (!param->mWrap && HasWrapped(*child, *next, backward)) break;
    if (next->CanReceiveFocus()) {
      next->SetFocus(!backward);
      return;
    }
    if (!child->IsUsable()) child = next;
    next = GetNextInTabOrder(next, backward);
  }
  if (param->mWrap) return;
  param->mPath.Add(held);
  PassTabUp(param);
}

}  // namespace TF
