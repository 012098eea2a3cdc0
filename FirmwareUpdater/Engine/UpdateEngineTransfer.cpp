#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "Engine/BootloaderMessages.h"
#include "Engine/FirmwareImage.h"
#include "Engine/UpdateEngine.h"
#include "Engine/VarnokMidiFirmwareUpdatePerformer.h"
#include "Platform/Clock.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

using namespace TF;

namespace {

// Sizes are signed 32-bit numbers in the arrays that hold an image.
constexpr std::uint32_t kMaxImageSize = 0x7FFFFFFF;

// Behind this byte a ready message ends, besides 0xF7.
constexpr unsigned char kLineEnd = 0x0D;

bool ReadWhole(File& file, Array<unsigned char>& image) {
  const std::uint32_t size = file.GetLength();
  if (size > kMaxImageSize) return false;
  image.SetCount(static_cast<std::int32_t>(size));
  return size == 0 || file.Read(image.GetBuffer(), size) == static_cast<std::int32_t>(size);
}

}  // namespace

// Reason and result are stored before the state, whose notification makes the screen read them.
TFRESULT LUpdateEngine::FailUpdate(std::int32_t reason, TFRESULT result, const char* why) {
  LogRecord(fmt::format("Update failed: {} (reason {}: {}, {})", why, reason,
                        NameOfCannotUpdateReason(reason), ResultText(result)));
  if (reason != REASON_NONE && HasSelectedDevice()) {
    mFoundDevices.GetAt(mSelectedDevice).mCannotUpdateReason = reason;
  }
  mUpdateResult = UPDATE_FAILED;
  SetDeviceState(DEVICE_CANNOT_BE_UPDATED);
  return result;
}

// Nothing may leave here as an exception: it would end the process in mid-update.
bool LUpdateEngine::ReadFirmwareFile(Array<unsigned char>& image) {
  try {
    const String folder = File::GetFolderPart(mFirmwareFilePath);
    const String name = File::GetNamePart(mFirmwareFilePath);
    if (folder.IsEmpty() || name.IsEmpty()) return false;
    File file;
    return file.Open(folder, name, kFileRead) == kSuccess && ReadWhole(file, image);
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
    return false;
  } catch (...) {
    LogRecord("The firmware file cannot be read: an exception of unknown kind.");
    return false;
  }
}

TFRESULT LUpdateEngine::BuildOpenMessageForDevice(Array<char>& out) {
  unsigned hardwareId = 0;
  unsigned secondaryId = 0;
  out.Clear();
  if (Failed(GetDeviceHardwareId(hardwareId)) || Failed(GetDeviceSecondaryId(secondaryId))) return kFailure;
  return BuildOpenMessage(out, hardwareId, secondaryId);
}

TFRESULT LUpdateEngine::OpenBootloader(const RCPtr<LMidiRenderPort>& render) {
  Array<char> message;
  BuildOpenMessageForDevice(message);
  if (message.GetCount() == 0) return kSuccess;
  mAckLight.SetRed();
  SendMessage(message, render);
  return mAckLight.Wait(mProbeLimits.mOpenReplyMs) == kWaitSignalled ? kSuccess : kFailure;
}

TFRESULT LUpdateEngine::RunTransfer(const Array<unsigned char>& image, const String& capturePortName,
                                    const String& renderPortName) {
  unsigned hardwareId = 0;
  unsigned secondaryId = 0;
  GetDeviceHardwareId(hardwareId);
  GetDeviceSecondaryId(secondaryId);
  const auto performer = MakeRC<LVarnokMidiFirmwareUpdatePerformer>(hardwareId, secondaryId);
  performer->SetLimits(mTransferLimits);
  performer->CreateNotificationHandler();
  return performer->Perform(image, capturePortName, renderPortName);
}

TFRESULT LUpdateEngine::ExecuteUpdate() {
  mUpdateResult = UPDATE_RUNNING;
  if (!HasSelectedDevice()) return FailUpdate(REASON_NONE, kFailure, "no device is selected");
  const DeviceDefinitionEx& device = mFoundDevices.GetAt(mSelectedDevice);
  const String captureName = device.mUpdateCapturePortName;
  const String renderName = device.mUpdateRenderPortName;
  RCPtr<LMidiCapturePort> capture;
  RCPtr<LMidiRenderPort> render;
  if (!OpenPorts(captureName, renderName, capture, render)) {
    return FailUpdate(REASON_DEVICE_ACCESS_FAILURE, kFailure, "the device's ports cannot be opened");
  }
  Array<unsigned char> image;
  if (!ReadFirmwareFile(image)) {
    return FailUpdate(REASON_FILE_ACCESS_FAILURE, kFailure, "the firmware file cannot be read");
  }
  // Here already, so that a bad image costs the device not one byte.
  if (image.GetCount() == 0 || !ValidateImageStructure(image) || !ValidateImageChecksums(image)) {
    return FailUpdate(REASON_DEVICE_ACCESS_FAILURE, kFailure,
                      "the firmware file is damaged or no firmware image");
  }
  if (Failed(OpenBootloader(render))) {
    return FailUpdate(REASON_NONE, kFailure, "the bootloader did not acknowledge its opening");
  }
  // The performer takes over the device with a service of its own.
  UnregisterHandler();
  capture = nullptr;
  render = nullptr;
  const TFRESULT result = RunTransfer(image, captureName, renderName);
  RegisterHandler();
  return FinishUpdate(result);
}

TFRESULT LUpdateEngine::FinishUpdate(TFRESULT transferResult) {
  if (Failed(transferResult)) {
    return FailUpdate(REASON_DEVICE_ACCESS_FAILURE, transferResult, "the transfer did not succeed");
  }
  if (mAbortRequested) {
    LogRecord("Update aborted after the transfer.");
    mUpdateResult = UPDATE_ABORTED;
    SetDeviceState(DEVICE_IN_UPDATE_MODE);
    OnUpdateCompleted(false);
    return kAborted;
  }
  LogRecord("Update sent: the device restarts with its new firmware.");
  mUpdateResult = UPDATE_SENT;
  return transferResult;
}

void LUpdateEngine::SetPacketDelay(unsigned short milliseconds) {
  mPacketDelay = milliseconds;
}

TFRESULT LUpdateEngine::SendFramedMessage(const IArray<unsigned char>& data,
                                          const RCPtr<LMidiRenderPort>& port) {
  if (!port || !GetMidiComm()) return kFailure;
  Array<char> message;
  BuildFramedMessage(data, message);
  return SendMessage(message, port);
}

template <class SendNext>
TFRESULT LUpdateEngine::SendPackets(const IArray<unsigned char>& data, const String& renderPortName,
                                    SendNext sendNext) {
  const RCPtr<LMidiCommInterface> comm = GetMidiComm();
  RCPtr<LRefCountedObject> port;
  if (!comm || Failed(comm->OpenRenderPort(renderPortName, port))) return kFailure;
  const RCPtr<LMidiRenderPort> render = port;
  for (std::int32_t done = 0; done < data.GetCount();) {
    if (mAbortRequested) return kAborted;
    done = sendNext(done, render);
    if (done < 0) return kFailure;
    PostUpdateProgress(0, static_cast<double>(done) / data.GetCount(), true, -1, false, String());
    Platform::SleepMilliseconds(mPacketDelay);
  }
  return kSuccess;
}

TFRESULT LUpdateEngine::SendFirmwareInPackets(const IArray<unsigned char>& data, const String&,
                                              const String& renderPortName) {
  Array<char> packet;
  return SendPackets(data, renderPortName, [&](std::int32_t from, const RCPtr<LMidiRenderPort>& render) {
    packet.Clear();
    const std::int32_t end = std::min(from + mPacketSize, data.GetCount());
    for (std::int32_t i = from; i < end; ++i) packet.Add(static_cast<char>(data.GetAt(i)));
    return Failed(SendMessage(packet, render)) ? -1 : end;
  });
}

TFRESULT LUpdateEngine::SendFirmwareMessages(const IArray<unsigned char>& data, const String&,
                                             const String& renderPortName) {
  Array<unsigned char> message;
  return SendPackets(data, renderPortName, [&](std::int32_t from, const RCPtr<LMidiRenderPort>& render) {
    message.Clear();
    std::int32_t next = from;
    for (; next < data.GetCount(); ++next) {
      const unsigned char byte = data.GetAt(next);
      if (byte == kLineEnd || byte == kMessageEnd) break;
      if (byte != kMessageStart) message.Add(byte);
    }
    return Failed(SendFramedMessage(message, render)) ? -1 : std::min(next + 1, data.GetCount());
  });
}

TFRESULT LUpdateEngine::ReservedTransfer(std::uintptr_t, std::uintptr_t, std::uintptr_t) {
  return kSuccess;
}

void LUpdateEngine::SendIdentityRequest(const RCPtr<LMidiRenderPort>& port) {
  Array<char> request;
  BuildIdentityRequest(request);
  SendMessage(request, port);
}
