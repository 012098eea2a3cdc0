#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/MidiDriver.h"

// A driver whose devices, failures and timing a test decides. It can hold devices of equal
// names, and it notes every call that breaks the driver's rules.
//
// Threads: any. Messages to the listener come on the thread that calls Receive..., Complete...
// or ResetInput.
class FakeMidiDriver final : public Platform::MidiDriver {
 public:
  enum class Call {
    kInputName,
    kOpenInput,
    kPrepareInput,
    kAddInput,
    kStartInput,
    kOutputName,
    kOpenOutput,
    kPrepareOutput,
    kUnprepareOutput,
    kSendShort,
    kSendLong,
  };
  enum class Sending { kAtOnce, kOnRequest };

  // The devices from now on. A port whose device is no longer among them has lost it.
  void SetInputs(const std::vector<std::u16string>& names);
  void SetOutputs(const std::vector<std::u16string>& names);
  // Lets so many calls pass; all after them fail with status until kMidiOk is set.
  void Fail(Call call, Platform::MidiStatus status, int passes = 0);
  void SetSending(Sending sending);

  // Device side. What a port would get from its device; false when no open port, not started
  // or no buffer is there to take it.
  bool ReceiveShort(Platform::MidiHandle port, std::uint32_t packed, std::uint32_t milliseconds);
  // One buffer's worth at most.
  bool ReceivePiece(Platform::MidiHandle port, std::string_view bytes);
  bool ReceiveError(Platform::MidiHandle port, std::string_view bytes);
  // A whole message, cut at the buffers' size.
  bool ReceiveLong(Platform::MidiHandle port, std::string_view bytes);
  // A message to the listener that once opened the port, whatever has become of it.
  void CallLate(Platform::MidiHandle port, Platform::MidiMessage message, std::uintptr_t first);
  void CompleteSend();

  // The open port on the device of this index, or null.
  Platform::MidiHandle InputOn(std::uint32_t device) const;
  Platform::MidiHandle OutputOn(std::uint32_t device) const;
  std::uint32_t QueuedBuffers(Platform::MidiHandle port) const;
  int Opens() const;
  int OpenPorts() const;
  // Long messages as sent, short ones as the four bytes of the packed word.
  std::vector<std::string> Sent() const;
  bool IsSending() const;
  // Calls that the driver's contract forbids, in words.
  std::vector<std::string> Misuse() const;

  std::uint32_t InputCount() override;
  std::uint32_t OutputCount() override;
  Platform::MidiStatus InputName(std::uint32_t device, std::u16string& name) override;
  Platform::MidiStatus InputName(Platform::MidiHandle port, std::u16string& name) override;
  Platform::MidiStatus OutputName(std::uint32_t device, std::u16string& name) override;
  Platform::MidiStatus OutputName(Platform::MidiHandle port, std::u16string& name) override;
  Platform::MidiStatus OpenInput(std::uint32_t device, std::shared_ptr<Platform::MidiListener> listener,
                                 Platform::MidiHandle& handle) override;
  Platform::MidiStatus PrepareInputBuffer(Platform::MidiHandle port, Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus UnprepareInputBuffer(Platform::MidiHandle port, Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus AddInputBuffer(Platform::MidiHandle port, Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus StartInput(Platform::MidiHandle port) override;
  Platform::MidiStatus StopInput(Platform::MidiHandle port) override;
  Platform::MidiStatus ResetInput(Platform::MidiHandle port) override;
  Platform::MidiStatus CloseInput(Platform::MidiHandle port) override;
  Platform::MidiStatus OpenOutput(std::uint32_t device, std::shared_ptr<Platform::MidiListener> listener,
                                  Platform::MidiHandle& handle) override;
  Platform::MidiStatus PrepareOutputBuffer(Platform::MidiHandle port, Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus UnprepareOutputBuffer(Platform::MidiHandle port,
                                             Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus SendShort(Platform::MidiHandle port, std::uint32_t packed) override;
  Platform::MidiStatus SendLong(Platform::MidiHandle port, Platform::MidiBuffer& buffer) override;
  Platform::MidiStatus CloseOutput(Platform::MidiHandle port) override;

 private:
  struct Device {
    std::u16string name;
    int serial;
  };
  struct Port {
    bool input = false;
    bool open = true;
    bool started = false;
    Device device;
    std::shared_ptr<Platform::MidiListener> listener;
    std::vector<Platform::MidiBuffer*> queue;
    int prepared = 0;
    Platform::MidiBuffer* sending = nullptr;
    bool lastSendWhole = true;
  };
  struct Failure {
    Platform::MidiStatus status;
    int passes;
  };
  using Lock = std::lock_guard<std::mutex>;

  void SetDevices(std::vector<Device>& devices, const std::vector<std::u16string>& names);
  Platform::MidiStatus FailureOf(Call call);
  Port* Find(Platform::MidiHandle port);
  Port* UseOpen(Platform::MidiHandle port, const char* operation);
  bool IsPresent(const Port& port) const;
  Platform::MidiStatus NameOf(const std::vector<Device>& devices, std::uint32_t device, std::u16string& name);
  Platform::MidiStatus NameOf(Platform::MidiHandle port, Call call, std::u16string& name);
  Platform::MidiStatus Open(bool input, std::uint32_t device,
                            const std::shared_ptr<Platform::MidiListener>& listener,
                            Platform::MidiHandle& handle);
  Platform::MidiHandle PortOn(bool input, std::uint32_t device) const;
  bool Deliver(Platform::MidiHandle handle, std::string_view bytes, Platform::MidiMessage message);
  void Note(const std::string& misuse) { mMisuse.push_back(misuse); }

  mutable std::mutex mMutex;
  std::vector<Device> mInputs;
  std::vector<Device> mOutputs;
  int mNextSerial = 0;
  std::map<Call, Failure> mFailures;
  Sending mSending = Sending::kAtOnce;
  std::deque<Port> mPorts;  // By handle minus 1; never shrinks, so no handle comes twice.
  int mOpens = 0;
  std::vector<std::string> mSent;
  std::vector<std::string> mMisuse;
};
