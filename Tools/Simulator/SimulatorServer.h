#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Tools/Simulator/SimulatedDevice.h"
#include "Tools/Vbin/FlashMemory.h"

namespace Simulator {

struct ServerOptions {
  DeviceOptions mDevice;
  // The folder of a USB gadget in the configuration file system, which then is the port; or
  // empty, and the port is a pair of sockets in mDirectory, which is made when it is missing.
  std::string mGadget;
  std::string mDirectory;
  std::string mPortName = "Tessel";
  std::string mFlashFile;  // Empty: none. Intel HEX, replaced at BL_CMD_FINISH and when the server stops.
  std::string mTraceFile;  // Empty: none. One line a message: milliseconds, "in" or "out", its bytes in hex.
};

// Runs one SimulatedDevice at one port. The operations may be called from any
// thread, but Open, Start, Run and Stop from one thread at a time.
class SimulatorServer {
 public:
  explicit SimulatorServer(ServerOptions options);
  ~SimulatorServer();  // Stops.
  SimulatorServer(const SimulatorServer&) = delete;
  SimulatorServer& operator=(const SimulatorServer&) = delete;

  // Makes the port, so that a computer finds the device when the call returns. Throws
  // std::runtime_error with a sentence, for example when the port's name is taken, and
  // std::invalid_argument for a name that a port cannot have.
  void Open();

  // Opens when that was not done, and serves on a thread of its own until Stop.
  void Start();

  // Serves on the calling thread until stopDescriptor is readable or the server fails.
  void Run(int stopDescriptor);

  // The port goes, and so does what was not sent. Writes the flash file. Harmless when stopped.
  void Stop();

  // What made the serving end by itself; empty while all is well.
  std::string Failure() const;

  std::vector<std::vector<std::uint8_t>> Received() const;  // Whole messages, in order of arrival.
  void ClearReceived();
  DeviceStatus Status() const;
  Vbin::FlashMemory Flash() const;
  bool IsPluggedIn() const;  // The port is there.

  // Waits until condition holds; false when limit passed first. The condition is called with
  // the server's lock held, so it must not call the server.
  bool WaitFor(const std::function<bool(const DeviceStatus&)>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(30)) const;
  bool WaitForPlug(bool pluggedIn, std::chrono::milliseconds limit = std::chrono::seconds(30)) const;

  // For tests: the device sends these bytes now, whatever its state.
  void Send(std::span<const std::uint8_t> bytes);
  // The cable is pulled, or put back. Takes effect soon after; WaitForPlug tells when.
  void Unplug();
  void Replug();

 private:
  struct Core;
  std::unique_ptr<Core> mCore;
};

}  // namespace Simulator
