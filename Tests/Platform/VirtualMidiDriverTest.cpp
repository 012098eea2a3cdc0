#include "Platform/VirtualMidiDriver.h"

#include "Tests/Platform/VirtualMidiFixture.h"
#include "Tests/Support/ProcessState.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <set>

namespace {

using Platform::MidiHandle;
using TestSupport::Eventually;
using TestSupport::Exclusive;
using TestSupport::MidiBufferSet;
using TestSupport::MidiRecorder;
using TestSupport::MidiSocket;

class VirtualMidiDriverTest : public VirtualMidiFixture {
 protected:
  std::vector<std::u16string> InputNames() {
    std::vector<std::u16string> names;
    const std::uint32_t count = driver->InputCount();
    for (std::uint32_t device = 0; device < count; ++device) {
      EXPECT_EQ(driver->InputName(device, names.emplace_back()), Platform::kMidiOk);
    }
    std::u16string beyond;
    EXPECT_EQ(driver->InputName(count, beyond), Platform::kMidiBadDevice);
    return names;
  }

  // Opens the first input, whatever comes of it, and closes it again.
  Platform::MidiStatus TryInput() {
    driver->InputCount();
    return TryCountedInput();
  }
  Platform::MidiStatus TryCountedInput() {
    MidiHandle port = nullptr;
    const Platform::MidiStatus status = driver->OpenInput(0, mListener, port);
    EXPECT_EQ(port == nullptr, status != Platform::kMidiOk);
    EXPECT_EQ(driver->CloseInput(port), port != nullptr ? Platform::kMidiOk : Platform::kMidiInvalidHandle);
    return status;
  }

  const std::shared_ptr<MidiRecorder> mListener = std::make_shared<MidiRecorder>(nullptr);
};

std::set<int> OpenDescriptors() {
  std::set<int> descriptors;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    descriptors.insert(std::stoi(entry.path().filename().string()));
  }
  return descriptors;
}

std::ptrdiff_t CountEntries(const char* processFolder) {
  const std::filesystem::directory_iterator entries(processFolder);
  return std::distance(begin(entries), end(entries));
}

TEST_F(VirtualMidiDriverTest, DevicesAreTheSocketsInTheOrderOfTheirNames) {
  const MidiSocket second(SocketPath("b Port.in")), third(SocketPath("\xC3\xA4\xF0\x9D\x84\x9E.in"));
  const MidiSocket first(SocketPath("Tessel MIDI 1.in")), nameless(SocketPath(".in"));
  const MidiSocket output(SocketPath("Tessel MIDI 1.out"));
  folder.WriteFile("no socket.in", "");
  std::filesystem::create_directory(SocketPath("folder.in"));
  EXPECT_EQ(InputNames(), (std::vector<std::u16string>{u"Tessel MIDI 1", u"b Port", u"\u00E4\U0001D11E"}));
  EXPECT_EQ(driver->OutputCount(), 1u);
  std::u16string name;
  EXPECT_EQ(driver->OutputName(0u, name), Platform::kMidiOk);
  EXPECT_EQ(name, u"Tessel MIDI 1");
}

TEST_F(VirtualMidiDriverTest, AFolderThatIsNotThereHasNoDevices) {
  driver = std::make_unique<Platform::VirtualMidiDriver>(SocketPath("missing"));
  EXPECT_TRUE(InputNames().empty());
  EXPECT_EQ(driver->OutputCount(), 0u);
  EXPECT_EQ(TryInput(), Platform::kMidiBadDevice);
}

TEST_F(VirtualMidiDriverTest, NumbersHoldUntilTheNextCount) {
  const MidiSocket device(SocketPath("b.in"));
  std::u16string name;
  EXPECT_EQ(driver->InputName(0u, name), Platform::kMidiOk) << "the first question counts by itself";
  const MidiSocket earlier(SocketPath("a.in"));
  EXPECT_EQ(driver->InputName(0u, name), Platform::kMidiOk);
  EXPECT_EQ(name, u"b");
  EXPECT_EQ(InputNames(), (std::vector<std::u16string>{u"a", u"b"}));
}

TEST_F(VirtualMidiDriverTest, ADeviceThatWentBetweenCountAndOpenIsABadDevice) {
  MidiSocket device(SocketPath("Tessel.in"));
  EXPECT_EQ(driver->InputCount(), 1u);
  device.RemoveFile();
  EXPECT_EQ(TryCountedInput(), Platform::kMidiBadDevice);
}

TEST_F(VirtualMidiDriverTest, AReasonIsToldOnceUntilItChanges) {
  MidiSocket device(SocketPath("Tessel.in"));
  device.StopListening();
  EXPECT_EQ(TryInput(), Platform::kMidiBadDevice);
  EXPECT_EQ(TryInput(), Platform::kMidiBadDevice);
  ASSERT_EQ(Records().size(), 1u);
  EXPECT_NE(Records()[0].find("MIDI input \"Tessel\" cannot be opened: Connection refused"),
            std::string::npos);

  device.RemoveFile();
  MidiSocket back(SocketPath("Tessel.in"));
  EXPECT_EQ(TryInput(), Platform::kMidiOk);
  back.StopListening();
  EXPECT_EQ(TryInput(), Platform::kMidiBadDevice);
  EXPECT_EQ(Records().size(), 2u);
}

TEST_F(VirtualMidiDriverTest, ADeviceThatAcceptsNobodyIsTaken) {
  const MidiSocket device(SocketPath("Tessel.in"), 0);
  const MidiHandle first = OpenFirstInput(mListener);
  EXPECT_EQ(TryInput(), Platform::kMidiAllocated);
  EXPECT_EQ(driver->CloseInput(first), Platform::kMidiOk);
}

TEST_F(VirtualMidiDriverTest, AForbiddenSocketIsRefusedWithAReason) {
  const MidiSocket device(SocketPath("Tessel.in"));
  ASSERT_EQ(chmod(folder.Path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(SocketPath("Tessel.in").c_str(), 0), 0);
  const auto child = TestSupport::RunInChild([&] {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && setuid(kNobody) != 0) _exit(1);
    Platform::SetMidiRecordSink(
        [](std::string_view text) { std::printf("%.*s\n", static_cast<int>(text.size()), text.data()); });
    std::printf("%u\n", TryInput());
  });
  EXPECT_EQ(child.exitStatus, 0);
  EXPECT_NE(child.output.find("Permission denied"), std::string::npos) << child.output;
  EXPECT_NE(child.output.find("right to write to the socket"), std::string::npos) << child.output;
  EXPECT_TRUE(child.output.ends_with("\n7\n")) << child.output;
}

TEST_F(VirtualMidiDriverTest, EveryPortGetsWhatTheDeviceSends) {
  MidiSocket device(SocketPath("Tessel.in"));
  const auto other = std::make_shared<MidiRecorder>(nullptr);
  const MidiHandle ports[] = {OpenFirstInput(mListener), OpenFirstInput(other)};
  TestSupport::MidiConnection connections[] = {device.Accept(), device.Accept()};
  for (const MidiHandle port : ports) EXPECT_EQ(driver->StartInput(port), Platform::kMidiOk);
  for (auto& connection : connections) connection.Send("\xF8");
  EXPECT_EQ(mListener->WaitForEvents(1)[0].port, ports[0]);
  EXPECT_EQ(other->WaitForEvents(1)[0].port, ports[1]);
}

TEST_F(VirtualMidiDriverTest, HandlesThatNameNoPortFailEverywhere) {
  const MidiSocket input(SocketPath("Tessel.in")), output(SocketPath("Tessel.out"));
  const MidiHandle capture = OpenFirstInput(mListener), closedCapture = OpenFirstInput(mListener);
  const MidiHandle render = OpenFirstOutput(mListener), closedRender = OpenFirstOutput(mListener);
  EXPECT_EQ(driver->CloseInput(closedCapture), Platform::kMidiOk);
  EXPECT_EQ(driver->CloseOutput(closedRender), Platform::kMidiOk);
  MidiBufferSet buffers(1, 8);
  std::u16string name;
  for (const MidiHandle port : {MidiHandle{}, closedCapture, render}) {
    EXPECT_EQ(driver->InputName(port, name), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->PrepareInputBuffer(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->UnprepareInputBuffer(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->AddInputBuffer(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->StartInput(port), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->StopInput(port), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->ResetInput(port), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->CloseInput(port), Platform::kMidiInvalidHandle);
  }
  for (const MidiHandle port : {MidiHandle{}, closedRender, capture}) {
    EXPECT_EQ(driver->OutputName(port, name), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->PrepareOutputBuffer(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->UnprepareOutputBuffer(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->SendShort(port, 0xF8), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->SendLong(port, buffers[0]), Platform::kMidiInvalidHandle);
    EXPECT_EQ(driver->CloseOutput(port), Platform::kMidiInvalidHandle);
  }
}

TEST_F(VirtualMidiDriverTest, APortKeepsItsListenerUntilItsThreadHasLeft) {
  MidiSocket device(SocketPath("Tessel.in"));
  auto listener = std::make_shared<MidiRecorder>(nullptr);
  const std::weak_ptr<MidiRecorder> watched = listener;
  const MidiHandle port = OpenFirstInput(listener);
  EXPECT_EQ(driver->StartInput(port), Platform::kMidiOk);
  {
    const std::lock_guard callbackWaits(listener->CallbackLock());
    device.Accept().Send("\xF8");
    listener->WaitForCallback();
    EXPECT_EQ(driver->CloseInput(port), Platform::kMidiOk);
    EXPECT_GT(watched.use_count(), 1) << "a callback is under way";
    EXPECT_FALSE(Platform::WaitForMidiThreads(0));
  }
  listener.reset();
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  EXPECT_TRUE(watched.expired());
}

TEST_F(VirtualMidiDriverTest, OpeningAndClosingLeavesNoDescriptorAndNoThread) {
  MidiSocket input(SocketPath("Tessel.in")), output(SocketPath("Tessel.out"));
  std::thread([] {}).join();  // A sanitizer starts a thread of its own with the first one.
  const auto descriptors = CountEntries("/proc/self/fd");
  const auto threads = CountEntries("/proc/self/task");
  constexpr int kRounds = 200;
  for (int round = 0; round < kRounds; ++round) {
    MidiBufferSet buffers(3, 256);
    std::string message = Exclusive(20);
    Platform::MidiBuffer send{message.data(), 20, 20};
    const MidiHandle capture = OpenFirstInput(mListener);
    buffers.AddTo(*driver, capture);
    EXPECT_EQ(driver->StartInput(capture), Platform::kMidiOk);
    const MidiHandle render = OpenFirstOutput(mListener);
    EXPECT_EQ(driver->PrepareOutputBuffer(render, send), Platform::kMidiOk);
    EXPECT_EQ(driver->SendLong(render, send), Platform::kMidiOk);
    EXPECT_EQ(driver->CloseOutput(render), Platform::kMidiOk);
    EXPECT_EQ(driver->CloseInput(capture), Platform::kMidiOk);
    EXPECT_TRUE(input.Accept().WaitForHangUp());
    EXPECT_TRUE(output.Accept().WaitForHangUp());
  }
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  EXPECT_EQ(CountEntries("/proc/self/fd"), descriptors);
  EXPECT_TRUE(Eventually([&] { return CountEntries("/proc/self/task") == threads; }));
}

TEST_F(VirtualMidiDriverTest, ProgramsThatAreStartedInheritNoPort) {
  const MidiSocket input(SocketPath("Tessel.in")), output(SocketPath("Tessel.out"));
  const std::set<int> before = OpenDescriptors();
  OpenFirstInput(mListener);
  OpenFirstOutput(mListener);
  int opened = 0;
  for (const int descriptor : OpenDescriptors()) {
    const int flags = before.contains(descriptor) ? -1 : fcntl(descriptor, F_GETFD);
    if (flags < 0) continue;  // Not of the ports: the listing has one of its own.
    ++opened;
    EXPECT_NE(flags & FD_CLOEXEC, 0) << descriptor;
  }
  EXPECT_GE(opened, 2);
}

TEST_F(VirtualMidiDriverTest, TheDriverClosesThePortsThatAreLeftOpen) {
  MidiSocket input(SocketPath("Tessel.in")), output(SocketPath("Tessel.out"));
  OpenFirstInput(mListener);
  OpenFirstOutput(mListener);
  auto capture = input.Accept(), render = output.Accept();
  driver.reset();
  EXPECT_TRUE(capture.WaitForHangUp());
  EXPECT_TRUE(render.WaitForHangUp());
}

}  // namespace
