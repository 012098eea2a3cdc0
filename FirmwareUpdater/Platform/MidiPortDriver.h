#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Platform/MidiDriver.h"
#include "Platform/MidiInputPort.h"
#include "Platform/MidiOutputPort.h"
#include "Platform/MidiPortTable.h"
#include "Platform/MidiTransport.h"

namespace Platform {

// What the drivers have in common: device numbers, handles, and ports that turn raw bytes
// into driver messages. A driver on top of it finds devices and opens them.
//
// The destructor closes the ports that are still open.
class MidiPortDriver : public MidiDriver {
 public:
  ~MidiPortDriver() override;

  std::uint32_t InputCount() override;
  std::uint32_t OutputCount() override;
  MidiStatus InputName(std::uint32_t device, std::u16string& name) override;
  MidiStatus InputName(MidiHandle port, std::u16string& name) override;
  MidiStatus OutputName(std::uint32_t device, std::u16string& name) override;
  MidiStatus OutputName(MidiHandle port, std::u16string& name) override;

  MidiStatus OpenInput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                       MidiHandle& handle) override;
  MidiStatus PrepareInputBuffer(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus UnprepareInputBuffer(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus AddInputBuffer(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus StartInput(MidiHandle port) override;
  MidiStatus StopInput(MidiHandle port) override;
  MidiStatus ResetInput(MidiHandle port) override;
  MidiStatus CloseInput(MidiHandle port) override;

  MidiStatus OpenOutput(std::uint32_t device, std::shared_ptr<MidiListener> listener,
                        MidiHandle& handle) override;
  MidiStatus PrepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus UnprepareOutputBuffer(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus SendShort(MidiHandle port, std::uint32_t packed) override;
  MidiStatus SendLong(MidiHandle port, MidiBuffer& buffer) override;
  MidiStatus CloseOutput(MidiHandle port) override;

 protected:
  enum class Direction { kInput, kOutput };

  struct Device {
    std::string address;  // Where the driver finds it again.
    std::string label;    // Product name, UTF-8.
  };

  // transport is set when status is kMidiOk; otherwise reason tells a developer why not.
  struct Connection {
    MidiStatus status = kMidiError;
    std::unique_ptr<MidiTransport> transport;
    std::string reason;
  };

 private:
  // The devices present now, in their order. Any thread.
  virtual std::vector<Device> ListDevices(Direction direction) = 0;
  // Any thread; bounded time.
  virtual Connection Connect(Direction direction, const Device& device) = 0;

  struct DeviceList {
    std::optional<std::vector<Device>> devices;  // Nothing before the first count.
    std::map<std::string, MidiStatus> reported;  // Open failures told already, by address.
  };

  DeviceList& ListOf(Direction direction) { return direction == Direction::kInput ? mInputs : mOutputs; }
  std::uint32_t Count(Direction direction);
  std::optional<Device> FindDevice(Direction direction, std::uint32_t index);
  MidiStatus DeviceName(Direction direction, std::uint32_t index, std::u16string& name);
  void ReportOpening(Direction direction, const Device& device, const Connection& connection);

  template <class Port>
  MidiStatus Open(Direction direction, MidiPortTable<Port>& table, std::uint32_t index,
                  std::shared_ptr<MidiListener> listener, MidiHandle& handle);

  std::mutex mMutex;  // Guards the two lists.
  DeviceList mInputs;
  DeviceList mOutputs;
  MidiPortTable<MidiInputPort> mInputPorts;
  MidiPortTable<MidiOutputPort> mOutputPorts;
};

}  // namespace Platform
