#pragma once

#include <cstdint>

#include "TFFramework/Midi/MidiCaptureNotificationData.h"
#include "TFFramework/Midi/MidiFilter.h"
#include "TFFramework/Notification/NotificationCenter.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Storage/Array.h"
#include "TFFramework/Utilities/Storage/LBuffer.h"

namespace TF {

inline constexpr char16_t kMidiDataCapturedName[] = u"NID_MIDI_DATA_CAPTURED";

// The MIDI service: ports by device name, sending, and captured messages as notifications.
// A client registers for "NID_MIDI_DATA_CAPTURED" on the service; the payload is an
// LMidiCaptureNotificationData with one whole message.
//
// Threads: any thread may open ports and send. Handlers run one at a time, in the order of
// arrival, on a thread of the service.
//
// Life: a registered client keeps the service alive. An owner takes its handlers off, calls
// Shutdown, and lets go; it does so on a thread of its own, not in a handler.
class LMidiCommInterface : public LNotificationDistributor {
 public:
  // A service of its own over this process's MIDI driver.
  static RCPtr<LMidiCommInterface> Create();

  // Open the device that name means; port then holds an opaque handle, and the device closes
  // when the last copy of it goes. Asking again for an open port gives the same handle.
  // kInvalidArgument when name fits several devices, kFailure when none can be opened; port is
  // null then.
  virtual TFRESULT OpenCapturePort(const String& name, RCPtr<LRefCountedObject>& port) = 0;
  virtual TFRESULT OpenRenderPort(const String& name, RCPtr<LRefCountedObject>& port) = 0;

  // Sends one whole message and returns when its bytes have left. Gives the number of bytes
  // sent; kInvalidArgument for no render port or no data; kFailure when the device did not
  // take it all.
  virtual TFRESULT Send(const RCPtr<LRefCountedObject>& port, const RCPtr<LIBuffer>& data) = 0;
  virtual TFRESULT Send(const RCPtr<LRefCountedObject>& port, const IArray<char>& data) = 0;

  virtual LRefCountedObject* GetRawPointer(const RCPtr<LRefCountedObject>& port) const;

  // A copy of the client's filter, or null.
  virtual RCPtr<LIMidiFilter> GetMidiFilter(const RCPtr<LNotificationClient>& client);
  // Keeps a copy of filter for the client; null takes the client's filter away.
  virtual TFRESULT SetMidiFilter(const RCPtr<LNotificationClient>& client, const RCPtr<LIMidiFilter>& filter);

  // Calls the registered clients whose filters accept data, the last registered first, on the
  // calling thread. kNothingDone when nobody has ever registered.
  virtual TFRESULT DistributeCapturedData(const RCPtr<LMidiCaptureNotificationData>& data);

  // Ends the service: no handler runs any more once it has returned (called in a handler, that
  // one runs on), messages not yet delivered are dropped, every port is closed, and opening
  // and sending fail from then on. Safe to call again.
  virtual void Shutdown() = 0;

 protected:
  // Posts data on mForwardCenter, when there is one.
  void ForwardCapturedData(const RCPtr<LMidiCaptureNotificationData>& data);

 private:
  struct MidiFilterEntry {
    const LNotificationReceiver* mReceiver = nullptr;  // Only compared.
    RCPtr<LIMidiFilter> mFilter;
  };

  std::int32_t FindFilter(const LNotificationReceiver* receiver) const;
  bool Accepts(const LNotificationReceiver* receiver, const LMidiCaptureNotificationData* data) const;

  RCPtr<LNotificationCenter> mForwardCenter;  // Set by nobody so far. Under mForwardMutex.
  Array<MidiFilterEntry> mFilters;            // Under mFilterMutex.
  mutable Mutex mFilterMutex;                 // Held while handlers run; a handler may change filters.
  Mutex mForwardMutex;
};

}  // namespace TF
