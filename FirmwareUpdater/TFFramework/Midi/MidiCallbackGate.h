#pragma once

#include "Platform/MidiDriver.h"
#include "TFFramework/Threads/Mutex.h"

namespace TF {

class LMidiComm;

// What the ports of a driver share with their service: they call in here on threads of their
// own, also while the service is going away, and find either the service or nothing.
class MidiCallbackGate final : public Platform::MidiListener {
 public:
  explicit MidiCallbackGate(LMidiComm& comm) : mComm(&comm) {}

  // From the driver's threads. Holds the ports' mutex while the service looks at the message.
  void OnMidiMessage(Platform::MidiHandle port, Platform::MidiMessage message, std::uintptr_t first,
                     std::uintptr_t second) override;

  // Waits for a callback under way; afterwards the service is touched no more.
  void Detach();

  // Guards the port lists of the service and all that callbacks touch.
  Mutex& GetPortsMutex() { return mPortsMutex; }

 private:
  Mutex mPortsMutex;
  LMidiComm* mComm;
};

}  // namespace TF
