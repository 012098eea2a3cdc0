#pragma once

#include <cstdint>

#include "Engine/ProbeLimits.h"
#include "Engine/TransferLimits.h"
#include "Engine/UpdateEngineInterface.h"
#include "TFFramework/Midi/MidiCapturePort.h"
#include "TFFramework/Midi/MidiCommInterface.h"
#include "TFFramework/Midi/MidiRenderPort.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationHandler.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Threads/TrafficLight.h"

// The update engine for a device on MIDI. The device does not tell when it comes or goes, so
// everything here is a probe on request; each opens the ports afresh and keeps none.
//
// Threads: as in the base. Probes block the calling thread for the times of ProbeLimits.
// Replies arrive on a thread of the MIDI service.
class LUpdateEngine : public LUpdateEngineInterface, public virtual TF::LNotificationClient {
 public:
  struct DeviceDefinitionEx : DeviceDefinition {
    virtual ~DeviceDefinitionEx() = default;
    DeviceDefinitionEx() = default;
    explicit DeviceDefinitionEx(const DeviceDefinition& definition) : DeviceDefinition(definition) {}
    DeviceDefinitionEx(const DeviceDefinitionEx&) = default;
    DeviceDefinitionEx& operator=(const DeviceDefinitionEx&) = default;

    FirmwareVersionInfo mVersion;  // Zero, with the text "Unknown", for a device in update mode.
    bool mInUpdateMode = false;    // The bootloader answered.
    std::int32_t mCannotUpdateReason = REASON_NONE;
    std::uint32_t mHardwareId = 0;
    std::uint32_t mSecondaryId = 0;
  };

  LUpdateEngine();
  ~LUpdateEngine() override;

  // Makes a new MIDI service. kFailure while a transfer runs.
  TFRESULT Initialize(const TF::String& commandLine) override;
  TFRESULT GetFoundDevices(TF::Array<DeviceDefinition>& out) override;
  // Probes the selected device and moves the state by what answers.
  TFRESULT RefreshDeviceState() override;
  // The number of bytes sent, kNothingDone for a device that is in update mode already.
  TFRESULT SwitchDeviceToUpdateMode() override;
  // Compares all four numbers.
  bool IsFirmwareFileNewer() override;
  // Honoured when the transfer is over: its data cannot be taken back.
  TFRESULT AbortUpdate() override;
  TFRESULT RefreshDeviceList() override;
  std::uint32_t GetDeviceCount() override;
  bool IsDeviceInUpdateMode(std::uint32_t index) override;
  TFRESULT GetDeviceStatus(std::uint32_t index, std::int32_t& reason) override;
  TFRESULT GetDeviceVersion(std::uint32_t index, FirmwareVersionInfo& out) override;
  TFRESULT ExecuteUpdate() override;

  // Ids of the selected device; kFailure when none is selected.
  virtual TFRESULT GetDeviceHardwareId(unsigned& out);
  virtual TFRESULT GetDeviceSecondaryId(unsigned& out);
  virtual void SetPacketDelay(unsigned short milliseconds);
  // Sends 0xF0, data, 0xF7; the number of bytes sent, or a failure.
  virtual TFRESULT SendFramedMessage(const TF::IArray<unsigned char>& data,
                                     const TF::RCPtr<TF::LMidiRenderPort>& port);
  virtual TFRESULT ReservedTransfer(std::uintptr_t first, std::uintptr_t second, std::uintptr_t third);
  // Raw transfers for devices of another kind: data cut into packets, or ready messages that
  // each end with 0x0D or 0xF7. kAborted when the user aborts.
  virtual TFRESULT SendFirmwareInPackets(const TF::IArray<unsigned char>& data,
                                         const TF::String& capturePortName, const TF::String& renderPortName);
  virtual TFRESULT SendFirmwareMessages(const TF::IArray<unsigned char>& data,
                                        const TF::String& capturePortName, const TF::String& renderPortName);
  virtual void SendIdentityRequest(const TF::RCPtr<TF::LMidiRenderPort>& port);
  // Asks the normal firmware for its version; the reply goes into the running probe.
  virtual TFRESULT QueryDeviceVersion(DeviceDefinitionEx& device,
                                      const TF::RCPtr<TF::LMidiCapturePort>& capture,
                                      const TF::RCPtr<TF::LMidiRenderPort>& render);

  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                      const TF::RCPtr<TF::LNotification>& notification) override;
  TFRESULT OnDistributorClosing(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                                TF::NotificationId id) override;

  void Shutdown() override;

  // Before Initialize; the defaults are the device's.
  void SetLimits(const ProbeLimits& probe, const TransferLimits& transfer);

 protected:
  void OnExitRequested() override;
  // Whether both ports can be opened as things are now; replaces the MIDI service.
  virtual bool IsDevicePresent(const TF::String& capturePortName, const TF::String& renderPortName);

 private:
  TFRESULT OnMidiDataCaptured(const TF::RCPtr<TF::LNotificationDistributor>& sender,
                              const TF::RCPtr<TF::LNotification>& notification);
  void TakeFirmwareVersionReply(const TF::IArray<char>& message);
  void TakeBootloaderVersionReply(const TF::IArray<char>& message);

  TF::RCPtr<TF::LMidiCommInterface> GetMidiComm();
  TFRESULT RegisterHandler();
  void UnregisterHandler();
  TFRESULT ReplaceMidiComm();
  void DropMidiComm();
  bool OpenPorts(const TF::String& captureName, const TF::String& renderName,
                 TF::RCPtr<TF::LMidiCapturePort>& capture, TF::RCPtr<TF::LMidiRenderPort>& render);
  TFRESULT SendMessage(const TF::Array<char>& message, const TF::RCPtr<TF::LMidiRenderPort>& render);

  TFRESULT ProbeDevice(DeviceDefinitionEx& device);
  bool ProbeFirmware(DeviceDefinitionEx& device);
  bool ProbeBootloader(const TF::String& capturePortName, const TF::String& renderPortName);
  void MoveStateAfterProbe(DeviceDefinitionEx& device, bool answered);

  TFRESULT FailUpdate(std::int32_t reason, TFRESULT result, const char* why);
  bool ReadFirmwareFile(TF::Array<unsigned char>& image);
  TFRESULT OpenBootloader(const TF::RCPtr<TF::LMidiRenderPort>& render);
  TFRESULT BuildOpenMessageForDevice(TF::Array<char>& out);
  TFRESULT RunTransfer(const TF::Array<unsigned char>& image, const TF::String& capturePortName,
                       const TF::String& renderPortName);
  TFRESULT FinishUpdate(TFRESULT transferResult);
  // Sends packet after packet and posts the progress by bytes.
  template <class SendNext>
  TFRESULT SendPackets(const TF::IArray<unsigned char>& data, const TF::String& renderPortName,
                       SendNext sendNext);

  // Only the worker writes to a record during an update, and then only its reason.
  TF::Array<DeviceDefinitionEx> mFoundDevices;
  TF::RCPtr<TF::LNotificationHandler<LUpdateEngine>> mNotificationHandler;
  TF::Mutex mMidiCommMutex;  // Guards the pointer: a handler compares it with its sender.
  TF::RCPtr<TF::LMidiCommInterface> mMidiComm;
  TF::TrafficLight mVersionLight;
  TF::TrafficLight mBootloaderLight;
  TF::TrafficLight mAckLight;
  std::uint16_t mPacketSize = 256;
  std::uint16_t mPacketDelay = 60;
  TF::Mutex mProbeMutex;  // Guards the record: a late reply may meet the prober.
  DeviceDefinitionEx mProbeRecord;
  ProbeLimits mProbeLimits;
  TransferLimits mTransferLimits;
};
