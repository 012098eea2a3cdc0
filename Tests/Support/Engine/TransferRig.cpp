#include "Tests/Support/Engine/TransferRig.h"

#include <fmt/format.h>

#include "Tests/Support/Engine/VirtualMidiEnvironment.h"

namespace EngineTest {

namespace {

constexpr const char16_t* kPortName = u"Tessel";

std::string Describe(const Bytes& message) {
  const auto request = Simulator::ParseRequest(message);
  if (!request || !request->mFault.empty()) return "malformed " + ToHex(message);
  std::string text(Simulator::NameOf(request->mName));
  switch (request->mName) {
    case Simulator::MessageName::kSelect:
    case Simulator::MessageName::kVerify:
      return text + fmt::format(" {}", GetWord(request->mArguments, 0));
    case Simulator::MessageName::kHeader:
      return text + fmt::format(" {}", GetWord(request->mArguments, 4));
    case Simulator::MessageName::kWrite:
    case Simulator::MessageName::kWriteAcked:
      return text + fmt::format(" {:x}+{}", GetWord(request->mArguments, 0), request->mArguments.at(4));
    default:
      return text;
  }
}

}  // namespace

TransferLimits ShortLimits() {
  TransferLimits limits;
  limits.mReplyMs = 1500;
  limits.mLateReplyMs = 20;
  limits.mVerifyPauseMs = 20;
  limits.mWritePauseMs = 0;
  limits.mRegionPauseMs = 0;
  return limits;
}

std::vector<Vbin::RegionDescription> TwoRegions() {
  return {
      MakeRegion(Simulator::kDefaultHardwareId, {{0x1000, MakeData(2000, 1)}}),
      MakeRegion(Simulator::kDefaultHardwareId, {{0x8000, MakeData(300, 2)}, {0x9000, MakeData(1920, 3)}})};
}

std::vector<Vbin::RegionDescription> OneRegion(std::size_t size) {
  return {MakeRegion(Simulator::kDefaultHardwareId, {{0x1000, MakeData(size)}})};
}

TransferRig::TransferRig(const std::vector<std::string>& faults) {
  Simulator::ServerOptions options;
  options.mDirectory = MidiFolder();
  options.mDevice.mMode = Simulator::DeviceMode::kBootloader;
  for (const std::string& fault : faults) options.mDevice.mFaults.push_back(Simulator::ParseFault(fault));
  mDevice = std::make_unique<Simulator::SimulatorServer>(options);
  mDevice->Start();
}

TFRESULT TransferRig::Transfer(const Bytes& image, unsigned hardwareId) {
  const auto performer =
      TF::MakeRC<LVarnokMidiFirmwareUpdatePerformer>(hardwareId, Simulator::kDefaultSecondaryId);
  performer->SetLimits(mLimits);
  performer->CreateNotificationHandler();
  return performer->Perform(ToArray(image), kPortName, kPortName);
}

TFRESULT TransferRig::Transfer(const std::vector<Vbin::RegionDescription>& regions, unsigned hardwareId) {
  return Transfer(MakeImage(regions), hardwareId);
}

std::vector<std::string> TransferRig::Messages() {
  std::vector<std::string> messages;
  for (const Bytes& message : mDevice->Received()) messages.push_back(Describe(message));
  return messages;
}

std::vector<std::string> TransferRig::Exchanges() {
  std::vector<std::string> exchanges = Messages();
  std::erase_if(exchanges, [](const std::string& message) { return message.starts_with("write"); });
  return exchanges;
}

bool TransferRig::WaitForCount(Simulator::MessageName name, std::uint32_t count) {
  return mDevice->WaitFor(
      [=](const Simulator::DeviceStatus& status) { return status.CountOf(name) >= count; });
}

void TransferRig::Reply(unsigned char code, const Bytes& arguments) {
  const Simulator::Reply reply =
      Simulator::MakeReply(Simulator::kDefaultHardwareId, Simulator::kDefaultSecondaryId, code, arguments);
  mDevice->Send(Simulator::FrameMessage(reply.mType, reply.mData));
}

void TransferRig::ReplyValue(std::uint32_t value) {
  Bytes arguments;
  Simulator::AppendLittleEndian(arguments, value);
  Reply(Simulator::kReplyValue, arguments);
}

void TransferRig::ReplyRegion(std::uint32_t index, std::uint32_t hardwareId) {
  Bytes arguments;
  Simulator::AppendLittleEndian(arguments, hardwareId);
  Simulator::AppendLittleEndian(arguments, index);
  Reply(Simulator::kReplyRegion, arguments);
}

bool TransferRig::FlashHolds(const std::vector<Vbin::RegionDescription>& regions) {
  const Bytes image = MakeImage(regions);
  return mDevice->Flash() == Vbin::FlashOf(Vbin::ReadImage(image), Simulator::kDefaultHardwareId);
}

}  // namespace EngineTest
