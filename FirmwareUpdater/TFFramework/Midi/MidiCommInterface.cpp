#include "TFFramework/Midi/MidiCommInterface.h"

#include "TFFramework/Midi/MidiComm.h"
#include "TFFramework/Notification/NotificationClientPool.h"

namespace TF {

namespace {

NotificationId CapturedId() {
  static const NotificationId id = GetNotificationID(kMidiDataCapturedName);
  return id;
}

}  // namespace

RCPtr<LMidiCommInterface> LMidiCommInterface::Create() {
  return MakeRC<LMidiComm>();
}

LRefCountedObject* LMidiCommInterface::GetRawPointer(const RCPtr<LRefCountedObject>& port) const {
  return port.Get();
}

RCPtr<LIMidiFilter> LMidiCommInterface::GetMidiFilter(const RCPtr<LNotificationClient>& client) {
  const MutexLock lock(mFilterMutex);
  const std::int32_t index = FindFilter(client.Get());
  return index < 0 ? nullptr : RCPtr<LIMidiFilter>(mFilters[index].mFilter->CreateCopy());
}

TFRESULT LMidiCommInterface::SetMidiFilter(const RCPtr<LNotificationClient>& client,
                                           const RCPtr<LIMidiFilter>& filter) {
  RCPtr<LIMidiFilter> copy;
  if (filter) copy = filter->CreateCopy();
  const MutexLock lock(mFilterMutex);
  const std::int32_t index = FindFilter(client.Get());
  if (index < 0) {
    if (copy) mFilters.Add({client.Get(), copy});
  } else if (copy) {
    mFilters[index].mFilter = copy;
  } else {
    mFilters.RemoveItems(index, 1);
  }
  return kSuccess;
}

TFRESULT LMidiCommInterface::DistributeCapturedData(const RCPtr<LMidiCaptureNotificationData>& data) {
  const RCPtr<LNotificationClientPool> pool = FindPool(CapturedId());
  if (!pool) return kNothingDone;
  const RCPtr<LNotificationDistributor> sender(this);
  RCPtr<LNotification> notification;
  const MutexLock lock(mFilterMutex);
  for (std::int32_t i = pool->GetCount() - 1; i >= 0; --i) {
    const RCPtr<LNotificationReceiver> receiver = pool->GetReceiverAt(i);
    if (!receiver || !Accepts(receiver.Get(), data.Get())) continue;
    if (!notification) notification = LNotification::Create(CapturedId(), data);
    i = pool->SendToClientAt(sender, i, notification);
  }
  return kSuccess;
}

void LMidiCommInterface::ForwardCapturedData(const RCPtr<LMidiCaptureNotificationData>& data) {
  RCPtr<LNotificationCenter> center;
  {
    const MutexLock lock(mForwardMutex);
    center = mForwardCenter;
  }
  if (center) center->Post(LNotification::Create(CapturedId(), data));
}

std::int32_t LMidiCommInterface::FindFilter(const LNotificationReceiver* receiver) const {
  for (std::int32_t i = 0; i < mFilters.GetCount(); ++i) {
    if (mFilters[i].mReceiver == receiver) return i;
  }
  return -1;
}

bool LMidiCommInterface::Accepts(const LNotificationReceiver* receiver,
                                 const LMidiCaptureNotificationData* data) const {
  const std::int32_t index = FindFilter(receiver);
  if (index < 0 || !data) return true;
  const RCPtr<LIMidiFilter> filter = mFilters[index].mFilter;  // It may be replaced while it runs.
  return filter->Accept(data->mData.GetBuffer(), static_cast<unsigned>(data->mData.GetCount()));
}

}  // namespace TF
