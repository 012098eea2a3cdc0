#include "Platform/MidiRecord.h"

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "Platform/MidiDriver.h"

namespace Platform {
namespace {

using Sink = std::function<void(std::string_view)>;

struct SinkHolder {
  std::mutex mutex;
  std::shared_ptr<const Sink> sink;
};

// Never destroyed: a port's thread may report while the process ends.
SinkHolder& Holder() {
  static auto& holder = *new SinkHolder;
  return holder;
}

}  // namespace

void SetMidiRecordSink(Sink sink) {
  auto fresh = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
  const std::lock_guard lock(Holder().mutex);
  Holder().sink.swap(fresh);
}

void MidiRecord(std::string_view text) {
  std::shared_ptr<const Sink> sink;
  {
    const std::lock_guard lock(Holder().mutex);
    sink = Holder().sink;
  }
  if (sink) (*sink)(text);
}

}  // namespace Platform
