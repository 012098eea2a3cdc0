#include "Platform/MidiPortDriver.h"

#include <utility>

#include "Platform/MidiRecord.h"
#include "Platform/NativePath.h"

namespace Platform {

MidiPortDriver::~MidiPortDriver() {
  while (const auto port = mInputPorts.RemoveAny()) port->Close();
  while (const auto port = mOutputPorts.RemoveAny()) port->Close();
}

std::uint32_t MidiPortDriver::InputCount() {
  return Count(Direction::kInput);
}

std::uint32_t MidiPortDriver::OutputCount() {
  return Count(Direction::kOutput);
}

std::uint32_t MidiPortDriver::Count(Direction direction) {
  auto devices = ListDevices(direction);
  const auto count = static_cast<std::uint32_t>(devices.size());
  const std::lock_guard lock(mMutex);
  ListOf(direction).devices = std::move(devices);
  return count;
}

std::optional<MidiPortDriver::Device> MidiPortDriver::FindDevice(Direction direction, std::uint32_t index) {
  std::unique_lock lock(mMutex);
  DeviceList& list = ListOf(direction);
  if (!list.devices) {
    lock.unlock();
    Count(direction);
    lock.lock();
  }
  if (index >= list.devices->size()) return std::nullopt;
  return (*list.devices)[index];
}

MidiStatus MidiPortDriver::DeviceName(Direction direction, std::uint32_t index, std::u16string& name) {
  const auto device = FindDevice(direction, index);
  if (!device) return kMidiBadDevice;
  name = FromNativeText(device->label);
  return kMidiOk;
}

MidiStatus MidiPortDriver::InputName(std::uint32_t device, std::u16string& name) {
  return DeviceName(Direction::kInput, device, name);
}

MidiStatus MidiPortDriver::InputName(MidiHandle port, std::u16string& name) {
  return mInputPorts.Call(port, &MidiInputPort::Name, name);
}

MidiStatus MidiPortDriver::OutputName(std::uint32_t device, std::u16string& name) {
  return DeviceName(Direction::kOutput, device, name);
}

MidiStatus MidiPortDriver::OutputName(MidiHandle port, std::u16string& name) {
  return mOutputPorts.Call(port, &MidiOutputPort::Name, name);
}

template <class Port>
MidiStatus MidiPortDriver::Open(Direction direction, MidiPortTable<Port>& table, std::uint32_t index,
                                std::shared_ptr<MidiListener> listener, MidiHandle& handle) {
  handle = nullptr;
  if (!listener) return kMidiError;
  const auto device = FindDevice(direction, index);
  if (!device) return kMidiBadDevice;
  Connection connection = Connect(direction, *device);
  ReportOpening(direction, *device, connection);
  if (connection.status != kMidiOk) return connection.status;

  const MidiHandle fresh = NewMidiHandle();
  auto port =
      std::make_shared<Port>(fresh, device->label, std::move(connection.transport), std::move(listener));
  const MidiStatus status = port->Begin();
  if (status != kMidiOk) return status;
  table.Insert(fresh, std::move(port));
  handle = fresh;
  return kMidiOk;
}

// Devices are opened again and again to see whether they are free: each reason is told once.
void MidiPortDriver::ReportOpening(Direction direction, const Device& device, const Connection& connection) {
  {
    const std::lock_guard lock(mMutex);
    auto& reported = ListOf(direction).reported;
    if (connection.status == kMidiOk) {
      reported.erase(device.address);
      return;
    }
    MidiStatus& last = reported[device.address];
    if (std::exchange(last, connection.status) == connection.status) return;
  }
  const char* kind = direction == Direction::kInput ? "input" : "output";
  MidiRecord(std::string("MIDI ") + kind + " \"" + device.label +
             "\" cannot be opened: " + connection.reason);
}

MidiStatus MidiPortDriver::OpenInput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                                     MidiHandle& handle) {
  return Open(Direction::kInput, mInputPorts, device, std::move(listener), handle);
}

MidiStatus MidiPortDriver::PrepareInputBuffer(MidiHandle port, MidiBuffer& buffer) {
  return mInputPorts.Call(port, &MidiInputPort::Prepare, buffer);
}

MidiStatus MidiPortDriver::UnprepareInputBuffer(MidiHandle port, MidiBuffer& buffer) {
  return mInputPorts.Call(port, &MidiInputPort::Unprepare, buffer);
}

MidiStatus MidiPortDriver::AddInputBuffer(MidiHandle port, MidiBuffer& buffer) {
  return mInputPorts.Call(port, &MidiInputPort::Add, buffer);
}

MidiStatus MidiPortDriver::StartInput(MidiHandle port) {
  return mInputPorts.Call(port, &MidiInputPort::Start);
}

MidiStatus MidiPortDriver::StopInput(MidiHandle port) {
  return mInputPorts.Call(port, &MidiInputPort::Stop);
}

MidiStatus MidiPortDriver::ResetInput(MidiHandle port) {
  return mInputPorts.Call(port, &MidiInputPort::Reset);
}

MidiStatus MidiPortDriver::CloseInput(MidiHandle port) {
  const auto closing = mInputPorts.Remove(port);
  return closing ? closing->Close() : kMidiInvalidHandle;
}

MidiStatus MidiPortDriver::OpenOutput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                                      MidiHandle& handle) {
  return Open(Direction::kOutput, mOutputPorts, device, std::move(listener), handle);
}

MidiStatus MidiPortDriver::PrepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) {
  return mOutputPorts.Call(port, &MidiOutputPort::Prepare, buffer);
}

MidiStatus MidiPortDriver::UnprepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) {
  return mOutputPorts.Call(port, &MidiOutputPort::Unprepare, buffer);
}

MidiStatus MidiPortDriver::SendShort(MidiHandle port, std::uint32_t packed) {
  return mOutputPorts.Call(port, &MidiOutputPort::SendShort, packed);
}

MidiStatus MidiPortDriver::SendLong(MidiHandle port, MidiBuffer& buffer) {
  return mOutputPorts.Call(port, &MidiOutputPort::SendLong, buffer);
}

MidiStatus MidiPortDriver::CloseOutput(MidiHandle port) {
  const auto closing = mOutputPorts.Remove(port);
  return closing ? closing->Close() : kMidiInvalidHandle;
}

}  // namespace Platform
