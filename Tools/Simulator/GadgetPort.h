#pragma once

#include <cstddef>
#include <string>

#include "Tools/Simulator/DevicePort.h"
#include "Tools/Support/Descriptor.h"

namespace Simulator {

// A USB-MIDI device made of the kernel's MIDI gadget function: what the device sends and gets
// runs over the raw MIDI port of the gadget's own sound card, and the cable is the gadget's
// binding to a USB device controller. The gadget itself is set up beforehand.
class GadgetPort : public DevicePort {
 public:
  // Bytes that wait for a computer that does not fetch them; beyond them bytes are dropped, as a
  // device drops them.
  static constexpr std::size_t kMaxUnsent = std::size_t{1} << 20;

  // folder is the gadget's in the configuration file system; its MIDI function has an id.
  explicit GadgetPort(std::string folder);
  ~GadgetPort() override;
  GadgetPort(const GadgetPort&) = delete;
  GadgetPort& operator=(const GadgetPort&) = delete;

  // Binds the gadget to the first device controller there is, and opens the raw MIDI port that
  // appears. The computer finds the device when it has enumerated it, some time later.
  void Open() override;
  void Close() override;
  bool IsOpen() const override { return static_cast<bool>(mNode); }
  void AppendTo(std::vector<pollfd>& descriptors) const override;
  // Throws std::runtime_error when somebody else has taken the gadget away.
  std::vector<std::uint8_t> Receive() override;
  void Send(std::span<const std::uint8_t> bytes) override;

 private:
  void Flush();

  std::string mFolder;
  Tools::Descriptor mNode;
  std::vector<std::uint8_t> mUnsent;
};

}  // namespace Simulator
