#pragma once

#include <cstdint>
#include <utility>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Threads/Event.h"

namespace TF {

// A manual-reset event seen as a light: red stops those who wait, green lets all through. It
// starts red. All operations from any thread.
class TrafficLight : private Event {
 public:
  TrafficLight();

  // Until green; results as in Event.
  using Event::Wait;
  bool IsGreen() { return IsSignalled(); }
  bool SetGreen() { return Set(); }
  bool SetRed() { return Reset(); }
};

// A light with a payload that whoever turns it green leaves for whoever waits.
//
// Threads: the light orders the payload between one giver and one taker. Where the giver may
// store again while the taker reads, the owner guards payload and light with a lock.
class TrafficLightWithData : public TrafficLight {
 public:
  RCPtr<LRefCountedObject> GetData() const { return mData; }
  void SetData(RCPtr<LRefCountedObject> data) { mData = std::move(data); }

 private:
  RCPtr<LRefCountedObject> mData;
};

}  // namespace TF
