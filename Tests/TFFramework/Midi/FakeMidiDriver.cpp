#include "Tests/TFFramework/Midi/FakeMidiDriver.h"

#include <algorithm>
#include <cstring>
#include <utility>

using Platform::MidiBuffer;
using Platform::MidiHandle;
using Platform::MidiMessage;
using Platform::MidiStatus;

void FakeMidiDriver::SetInputs(const std::vector<std::u16string>& names) {
  SetDevices(mInputs, names);
}
void FakeMidiDriver::SetOutputs(const std::vector<std::u16string>& names) {
  SetDevices(mOutputs, names);
}

// A device that stays, by its name, keeps its serial number and so its open ports.
void FakeMidiDriver::SetDevices(std::vector<Device>& devices, const std::vector<std::u16string>& names) {
  const Lock lock(mMutex);
  std::vector<Device> before = std::move(devices);
  devices.clear();
  for (const std::u16string& name : names) {
    const auto old =
        std::find_if(before.begin(), before.end(), [&](const Device& device) { return device.name == name; });
    if (old == before.end()) {
      devices.push_back({name, ++mNextSerial});
    } else {
      devices.push_back(*old);
      before.erase(old);
    }
  }
}

void FakeMidiDriver::Fail(Call call, MidiStatus status, int passes) {
  const Lock lock(mMutex);
  mFailures[call] = {status, passes};
}

void FakeMidiDriver::SetSending(Sending sending) {
  const Lock lock(mMutex);
  mSending = sending;
}

MidiStatus FakeMidiDriver::FailureOf(Call call) {
  const auto found = mFailures.find(call);
  if (found == mFailures.end()) return Platform::kMidiOk;
  if (found->second.passes > 0) {
    --found->second.passes;
    return Platform::kMidiOk;
  }
  return found->second.status;
}

FakeMidiDriver::Port* FakeMidiDriver::Find(MidiHandle port) {
  const auto number = reinterpret_cast<std::uintptr_t>(port);
  return number == 0 || number > mPorts.size() ? nullptr : &mPorts[number - 1];
}

FakeMidiDriver::Port* FakeMidiDriver::UseOpen(MidiHandle port, const char* operation) {
  Port* found = Find(port);
  if (found && found->open) return found;
  Note(std::string(operation) + " on a closed port");
  return nullptr;
}

bool FakeMidiDriver::IsPresent(const Port& port) const {
  const std::vector<Device>& devices = port.input ? mInputs : mOutputs;
  return std::any_of(devices.begin(), devices.end(),
                     [&](const Device& device) { return device.serial == port.device.serial; });
}

bool FakeMidiDriver::ReceiveShort(MidiHandle port, std::uint32_t packed, std::uint32_t milliseconds) {
  std::shared_ptr<Platform::MidiListener> listener;
  {
    const Lock lock(mMutex);
    const Port* found = Find(port);
    if (!found || !found->open || !found->started) return false;
    listener = found->listener;
  }
  listener->OnMidiMessage(port, MidiMessage::kData, packed, milliseconds);
  return true;
}

bool FakeMidiDriver::ReceivePiece(MidiHandle port, std::string_view bytes) {
  return Deliver(port, bytes, MidiMessage::kLongData);
}

bool FakeMidiDriver::ReceiveError(MidiHandle port, std::string_view bytes) {
  return Deliver(port, bytes, MidiMessage::kLongError);
}

bool FakeMidiDriver::ReceiveLong(MidiHandle port, std::string_view bytes) {
  constexpr std::size_t kBufferBytes = 256;
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kBufferBytes);
    if (!ReceivePiece(port, piece)) return false;
    bytes.remove_prefix(piece.size());
  }
  return true;
}

bool FakeMidiDriver::Deliver(MidiHandle handle, std::string_view bytes, MidiMessage message) {
  std::shared_ptr<Platform::MidiListener> listener;
  MidiBuffer* buffer = nullptr;
  {
    const Lock lock(mMutex);
    Port* port = Find(handle);
    if (!port || !port->open || !port->started || port->queue.empty()) return false;
    buffer = port->queue.front();
    port->queue.erase(port->queue.begin());
    if (bytes.size() > buffer->length) {
      Note("a test sends more than a buffer holds");
      return false;
    }
    std::memcpy(buffer->data, bytes.data(), bytes.size());
    buffer->recorded = static_cast<std::uint32_t>(bytes.size());
    buffer->done = true;
    listener = port->listener;
  }
  listener->OnMidiMessage(handle, message, reinterpret_cast<std::uintptr_t>(buffer), 0);
  return true;
}

void FakeMidiDriver::CallLate(MidiHandle port, MidiMessage message, std::uintptr_t first) {
  std::shared_ptr<Platform::MidiListener> listener;
  {
    const Lock lock(mMutex);
    listener = Find(port)->listener;
  }
  listener->OnMidiMessage(port, message, first, 0);
}

void FakeMidiDriver::CompleteSend() {
  std::shared_ptr<Platform::MidiListener> listener;
  MidiHandle handle = nullptr;
  MidiBuffer* buffer = nullptr;
  {
    const Lock lock(mMutex);
    for (std::size_t i = 0; i < mPorts.size(); ++i) {
      Port& port = mPorts[i];
      if (!port.sending) continue;
      mSent.emplace_back(port.sending->data, port.sending->length);
      port.lastSendWhole = true;
      buffer = std::exchange(port.sending, nullptr);
      buffer->done = true;
      listener = port.listener;
      handle = reinterpret_cast<MidiHandle>(i + 1);
      break;
    }
  }
  if (listener) {
    listener->OnMidiMessage(handle, MidiMessage::kLongDone, reinterpret_cast<std::uintptr_t>(buffer), 0);
  }
}

MidiHandle FakeMidiDriver::PortOn(bool input, std::uint32_t device) const {
  const Lock lock(mMutex);
  const std::vector<Device>& devices = input ? mInputs : mOutputs;
  for (std::size_t i = 0; device < devices.size() && i < mPorts.size(); ++i) {
    const Port& port = mPorts[i];
    if (port.open && port.input == input && port.device.serial == devices[device].serial) {
      return reinterpret_cast<MidiHandle>(i + 1);
    }
  }
  return nullptr;
}

MidiHandle FakeMidiDriver::InputOn(std::uint32_t device) const {
  return PortOn(true, device);
}
MidiHandle FakeMidiDriver::OutputOn(std::uint32_t device) const {
  return PortOn(false, device);
}

std::uint32_t FakeMidiDriver::QueuedBuffers(MidiHandle port) const {
  const Lock lock(mMutex);
  const auto number = reinterpret_cast<std::uintptr_t>(port);
  return static_cast<std::uint32_t>(mPorts.at(number - 1).queue.size());
}

int FakeMidiDriver::Opens() const {
  const Lock lock(mMutex);
  return mOpens;
}

int FakeMidiDriver::OpenPorts() const {
  const Lock lock(mMutex);
  return static_cast<int>(
      std::count_if(mPorts.begin(), mPorts.end(), [](const Port& port) { return port.open; }));
}

std::vector<std::string> FakeMidiDriver::Sent() const {
  const Lock lock(mMutex);
  return mSent;
}

bool FakeMidiDriver::IsSending() const {
  const Lock lock(mMutex);
  return std::any_of(mPorts.begin(), mPorts.end(), [](const Port& port) { return port.sending != nullptr; });
}

std::vector<std::string> FakeMidiDriver::Misuse() const {
  const Lock lock(mMutex);
  return mMisuse;
}

std::uint32_t FakeMidiDriver::InputCount() {
  const Lock lock(mMutex);
  return static_cast<std::uint32_t>(mInputs.size());
}

std::uint32_t FakeMidiDriver::OutputCount() {
  const Lock lock(mMutex);
  return static_cast<std::uint32_t>(mOutputs.size());
}

MidiStatus FakeMidiDriver::NameOf(const std::vector<Device>& devices, std::uint32_t device,
                                  std::u16string& name) {
  if (device >= devices.size()) return Platform::kMidiBadDevice;
  name = devices[device].name;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::NameOf(MidiHandle port, Call call, std::u16string& name) {
  const Lock lock(mMutex);
  const Port* found = Find(port);
  if (!found || !found->open) return Platform::kMidiInvalidHandle;
  if (const MidiStatus status = FailureOf(call)) return status;
  if (!IsPresent(*found)) return Platform::kMidiBadDevice;
  name = found->device.name;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::InputName(std::uint32_t device, std::u16string& name) {
  const Lock lock(mMutex);
  if (const MidiStatus status = FailureOf(Call::kInputName)) return status;
  return NameOf(mInputs, device, name);
}

MidiStatus FakeMidiDriver::OutputName(std::uint32_t device, std::u16string& name) {
  const Lock lock(mMutex);
  if (const MidiStatus status = FailureOf(Call::kOutputName)) return status;
  return NameOf(mOutputs, device, name);
}

MidiStatus FakeMidiDriver::InputName(MidiHandle port, std::u16string& name) {
  return NameOf(port, Call::kInputName, name);
}

MidiStatus FakeMidiDriver::OutputName(MidiHandle port, std::u16string& name) {
  return NameOf(port, Call::kOutputName, name);
}

MidiStatus FakeMidiDriver::Open(bool input, std::uint32_t device,
                                const std::shared_ptr<Platform::MidiListener>& listener, MidiHandle& handle) {
  handle = nullptr;
  const Lock lock(mMutex);
  ++mOpens;
  if (const MidiStatus status = FailureOf(input ? Call::kOpenInput : Call::kOpenOutput)) return status;
  const std::vector<Device>& devices = input ? mInputs : mOutputs;
  if (device >= devices.size()) return Platform::kMidiBadDevice;
  const bool taken = std::any_of(mPorts.begin(), mPorts.end(), [&](const Port& port) {
    return port.open && port.input == input && port.device.serial == devices[device].serial;
  });
  if (taken) return Platform::kMidiAllocated;
  Port port;
  port.input = input;
  port.device = devices[device];
  port.listener = listener;
  mPorts.push_back(port);
  handle = reinterpret_cast<MidiHandle>(mPorts.size());
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::OpenInput(std::uint32_t device, std::shared_ptr<Platform::MidiListener> listener,
                                     MidiHandle& handle) {
  return Open(true, device, listener, handle);
}

MidiStatus FakeMidiDriver::OpenOutput(std::uint32_t device, std::shared_ptr<Platform::MidiListener> listener,
                                      MidiHandle& handle) {
  return Open(false, device, listener, handle);
}

MidiStatus FakeMidiDriver::PrepareInputBuffer(MidiHandle handle, MidiBuffer& buffer) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "PrepareInputBuffer");
  if (!port) return Platform::kMidiInvalidHandle;
  if (const MidiStatus status = FailureOf(Call::kPrepareInput)) return status;
  if (!buffer.prepared) ++port->prepared;
  buffer.prepared = true;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::UnprepareInputBuffer(MidiHandle handle, MidiBuffer& buffer) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "UnprepareInputBuffer");
  if (!port) return Platform::kMidiInvalidHandle;
  if (std::find(port->queue.begin(), port->queue.end(), &buffer) != port->queue.end()) {
    Note("UnprepareInputBuffer on a queued buffer");
    return Platform::kMidiStillPlaying;
  }
  if (buffer.prepared) --port->prepared;
  buffer.prepared = false;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::AddInputBuffer(MidiHandle handle, MidiBuffer& buffer) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "AddInputBuffer");
  if (!port) return Platform::kMidiInvalidHandle;
  if (!buffer.prepared || buffer.done || buffer.recorded != 0) {
    Note("AddInputBuffer on a buffer that is not ready");
    return Platform::kMidiUnprepared;
  }
  if (const MidiStatus status = FailureOf(Call::kAddInput)) return status;
  port->queue.push_back(&buffer);
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::StartInput(MidiHandle handle) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "StartInput");
  if (!port) return Platform::kMidiInvalidHandle;
  if (const MidiStatus status = FailureOf(Call::kStartInput)) return status;
  port->started = true;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::StopInput(MidiHandle handle) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "StopInput");
  if (!port) return Platform::kMidiInvalidHandle;
  port->started = false;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::ResetInput(MidiHandle handle) {
  std::vector<MidiBuffer*> queue;
  std::shared_ptr<Platform::MidiListener> listener;
  {
    const Lock lock(mMutex);
    Port* port = UseOpen(handle, "ResetInput");
    if (!port) return Platform::kMidiInvalidHandle;
    port->started = false;
    queue.swap(port->queue);
    listener = port->listener;
  }
  for (MidiBuffer* buffer : queue) {
    buffer->done = true;
    buffer->recorded = 0;
    listener->OnMidiMessage(handle, MidiMessage::kLongData, reinterpret_cast<std::uintptr_t>(buffer), 0);
  }
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::CloseInput(MidiHandle handle) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "CloseInput");
  if (!port) return Platform::kMidiInvalidHandle;
  if (!port->queue.empty()) Note("CloseInput with buffers queued");
  if (port->prepared != 0) Note("CloseInput with buffers prepared");
  port->open = false;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::PrepareOutputBuffer(MidiHandle handle, MidiBuffer& buffer) {
  const Lock lock(mMutex);
  Port* port = Find(handle);
  if (!port || !port->open) return Platform::kMidiInvalidHandle;
  if (const MidiStatus status = FailureOf(Call::kPrepareOutput)) return status;
  ++port->prepared;
  buffer.prepared = true;
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::UnprepareOutputBuffer(MidiHandle handle, MidiBuffer& buffer) {
  const Lock lock(mMutex);
  Port* port = Find(handle);
  if (!port || !port->open) return Platform::kMidiInvalidHandle;
  if (!buffer.prepared) Note("UnprepareOutputBuffer on a buffer that is not prepared");
  buffer.prepared = false;
  --port->prepared;
  if (port->sending == &buffer) {
    port->sending = nullptr;
    port->lastSendWhole = false;
  }
  if (const MidiStatus status = FailureOf(Call::kUnprepareOutput)) return status;
  return port->lastSendWhole ? Platform::kMidiOk : Platform::kMidiError;
}

MidiStatus FakeMidiDriver::SendShort(MidiHandle handle, std::uint32_t packed) {
  const Lock lock(mMutex);
  Port* port = Find(handle);
  if (!port || !port->open) return Platform::kMidiInvalidHandle;
  if (!IsPresent(*port)) return Platform::kMidiBadDevice;
  if (const MidiStatus status = FailureOf(Call::kSendShort)) return status;
  std::string bytes;
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(packed >> (8 * i) & 0xFF);
  mSent.push_back(bytes);
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::SendLong(MidiHandle handle, MidiBuffer& buffer) {
  bool complete = false;
  {
    const Lock lock(mMutex);
    Port* port = UseOpen(handle, "SendLong");
    if (!port) return Platform::kMidiInvalidHandle;
    if (!buffer.prepared) Note("SendLong with a buffer that is not prepared");
    if (port->sending) Note("SendLong while another one is under way");
    if (!IsPresent(*port)) return Platform::kMidiBadDevice;
    if (const MidiStatus status = FailureOf(Call::kSendLong)) return status;
    port->sending = &buffer;
    complete = mSending == Sending::kAtOnce;
  }
  if (complete) CompleteSend();
  return Platform::kMidiOk;
}

MidiStatus FakeMidiDriver::CloseOutput(MidiHandle handle) {
  const Lock lock(mMutex);
  Port* port = UseOpen(handle, "CloseOutput");
  if (!port) return Platform::kMidiInvalidHandle;
  port->sending = nullptr;
  port->open = false;
  return Platform::kMidiOk;
}
