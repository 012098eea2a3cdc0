#include "TFFramework/Midi/MidiCallbackGate.h"

#include "TFFramework/Midi/MidiComm.h"

namespace TF {

void MidiCallbackGate::OnMidiMessage(Platform::MidiHandle port, Platform::MidiMessage message,
                                     std::uintptr_t first, std::uintptr_t second) {
  const MutexLock lock(mPortsMutex);
  if (mComm) mComm->OnMidiMessage(port, message, first, second);
}

void MidiCallbackGate::Detach() {
  const MutexLock lock(mPortsMutex);
  mComm = nullptr;
}

}  // namespace TF
