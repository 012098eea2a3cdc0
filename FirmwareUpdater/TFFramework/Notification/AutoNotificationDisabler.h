#pragma once

#include <exception>
#include <string>
#include <typeinfo>

#include "TFFramework/Notification/NotificationHandler.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

// Takes one handler out for a scope, so that a change an object makes does not come back to
// it. Throws FailedResultException when there is no such handler, or when it cannot be taken
// out or put back; while another exception passes, a failure to put it back is only recorded.
template <class T>
class CAutoNotificationDisabler {
 public:
  CAutoNotificationDisabler(const RCPtr<LNotificationHandler<T>>& handler,
                            const RCPtr<LNotificationDistributor>& distributor, const char16_t* name)
      : mHandler(handler), mDistributor(distributor), mId(GetNotificationID(name)) {
    const std::string here = ClassName() + "::CAutoNotificationDisabler";
    ThrowIfFailed(GetHandler(), here);
    ThrowIfFailed(Disable(), here);
  }
  CAutoNotificationDisabler(const CAutoNotificationDisabler&) = delete;
  CAutoNotificationDisabler& operator=(const CAutoNotificationDisabler&) = delete;

  ~CAutoNotificationDisabler() noexcept(false) {
    const TFRESULT result = mHandler->AddHandler(mFunction, mDistributor, mId, mFlags);
    if (!Failed(result)) return;
    const std::string here = ClassName() + "::~CAutoNotificationDisabler";
    if (std::uncaught_exceptions() == mExceptionsAtStart) ThrowIfFailed(result, here);
    LogRecord(here + ": the handler could not be put back, " + ResultText(result));
  }

 private:
  TFRESULT GetHandler() {
    if (!mHandler || !mDistributor) return kInvalidArgument;
    return mHandler->GetHandler(mDistributor, mId, mFunction, mFlags);
  }

  TFRESULT Disable() {
    const TFRESULT result = mHandler->GetOwner()->Unregister(mDistributor, mId);
    if (Failed(result)) return result;
    return mHandler->RemoveHandler(mDistributor, mId) ? kSuccess : kFailure;
  }

  static std::string ClassName() {
    return "TF::CAutoNotificationDisabler<class " + DemangledName(typeid(T).name()) + ">";
  }

  const RCPtr<LNotificationHandler<T>> mHandler;
  const RCPtr<LNotificationDistributor> mDistributor;
  const NotificationId mId;
  const int mExceptionsAtStart = std::uncaught_exceptions();
  typename LNotificationHandler<T>::Function mFunction = nullptr;
  std::uint32_t mFlags = 0;
};

}  // namespace TF
