#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "Platform/MidiDriver.h"

namespace Platform {

// A handle that this process has not used yet. Any thread.
MidiHandle NewMidiHandle();

// The open ports of one kind by handle. A port found here stays alive while it is held, even
// when another thread closes it meanwhile. Any thread.
template <class Port>
class MidiPortTable {
 public:
  void Insert(MidiHandle handle, std::shared_ptr<Port> port) {
    const std::lock_guard lock(mMutex);
    mPorts.emplace(handle, std::move(port));
  }

  // Null for a handle that is null, closed or of another table.
  std::shared_ptr<Port> Find(MidiHandle handle) {
    const std::lock_guard lock(mMutex);
    const auto found = mPorts.find(handle);
    return found == mPorts.end() ? nullptr : found->second;
  }

  std::shared_ptr<Port> Remove(MidiHandle handle) {
    const std::lock_guard lock(mMutex);
    auto node = mPorts.extract(handle);
    return node.empty() ? nullptr : std::move(node.mapped());
  }

  // Any one of those left, null when the table is empty.
  std::shared_ptr<Port> RemoveAny() {
    const std::lock_guard lock(mMutex);
    if (mPorts.empty()) return nullptr;
    return std::move(mPorts.extract(mPorts.begin()).mapped());
  }

  // Calls the operation of the port behind the handle.
  template <class... Parameters, class... Arguments>
  MidiStatus Call(MidiHandle handle, MidiStatus (Port::*operation)(Parameters...), Arguments&&... arguments) {
    const auto port = Find(handle);
    return port ? (port.get()->*operation)(std::forward<Arguments>(arguments)...) : kMidiInvalidHandle;
  }

 private:
  std::mutex mMutex;
  std::unordered_map<MidiHandle, std::shared_ptr<Port>> mPorts;
};

}  // namespace Platform
