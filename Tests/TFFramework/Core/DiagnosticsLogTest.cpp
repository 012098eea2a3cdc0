#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <thread>
#include <vector>

#include "Tests/Support/LogCapture.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/UdpReceiver.h"

namespace TF {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogCapture;
using TestSupport::RunInChild;
using TestSupport::UdpReceiver;

// A log whose debug output is kept.
struct KeptLog {
  std::vector<std::string> mRecords;
  DiagnosticsLog mLog{[this](std::string_view text) { mRecords.emplace_back(text); }};
};

void ExpectBanner(UdpReceiver& receiver) {
  EXPECT_EQ(receiver.Receive(), "*** APPLICATION Launched on ");
  EXPECT_EQ(receiver.Receive(), "127.0.0.1");
  EXPECT_EQ(receiver.Receive(), "***\n");
}

TEST(DiagnosticsLog, EachFlushIsOneRecord) {
  KeptLog kept;
  kept.mLog.GetNarrowStream() << "one " << 1 << std::flush;
  kept.mLog.GetNarrowStream() << "two" << std::endl;
  kept.mLog.GetWideStream() << L"wide \u20AC \U0001F3B9" << std::flush;
  kept.mLog.Write("whole");
  EXPECT_THAT(kept.mRecords, ElementsAre("one 1", "two\n", "wide \xE2\x82\xAC \xF0\x9F\x8E\xB9", "whole\n"));
}

TEST(DiagnosticsLog, FlushOfNothingIsNoRecord) {
  KeptLog kept;
  kept.mLog.GetNarrowStream() << std::flush << std::flush;
  kept.mLog.GetWideStream() << std::flush;
  kept.mLog.Flush();
  EXPECT_THAT(kept.mRecords, IsEmpty());
}

TEST(DiagnosticsLog, RecordEndsAtItsFirstZero) {
  KeptLog kept;
  kept.mLog.GetNarrowStream() << std::string("a\0b", 3) << std::flush << "c" << std::flush;
  EXPECT_THAT(kept.mRecords, ElementsAre("a", "c"));
}

TEST(DiagnosticsLog, WideTextThatIsNoCharacterIsReplaced) {
  EXPECT_EQ(WideToUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
  EXPECT_EQ(WideToUtf8(std::wstring(1, static_cast<wchar_t>(0xFFFFFFFF))), "\xEF\xBF\xBD");
  EXPECT_EQ(WideToUtf8(L""), "");
}

TEST(DiagnosticsLog, LastRecordGoesOutWithoutAFlush) {
  std::vector<std::string> records;
  {
    DiagnosticsLog log([&](std::string_view text) { records.emplace_back(text); });
    log.GetNarrowStream() << "narrow";
    log.GetWideStream() << L"wide";
  }
  EXPECT_THAT(records, ElementsAre("narrow", "wide"));
}

TEST(DiagnosticsLog, BufferOfItsOwnSendsItsLastRecord) {
  KeptLog kept;
  {
    basic_dostream<char> used(kept.mLog);
    const basic_dostream<char> unused(kept.mLog);
    used << "sent" << std::flush << "left";
  }
  EXPECT_THAT(kept.mRecords, ElementsAre("sent", "left"));
}

TEST(DiagnosticsLog, FirstDatagramFollowsABanner) {
  UdpReceiver receiver;
  DiagnosticsLog log;
  log.SetRemoteTarget("127.0.0.1", receiver.Port());
  log.GetNarrowStream() << std::flush;
  log.Write("");
  ExpectBanner(receiver);
  EXPECT_EQ(receiver.Receive(), "\n");
  log.GetNarrowStream() << "first" << std::flush;
  log.GetNarrowStream() << std::flush;
  log.GetWideStream() << L"\u00E4" << std::flush;
  log.Write("last");
  EXPECT_EQ(receiver.Receive(), "first");
  EXPECT_EQ(receiver.Receive(), "\xC3\xA4");
  EXPECT_EQ(receiver.Receive(), "last\n");
  EXPECT_EQ(receiver.ReceiveAllBefore("mark"), "");
}

TEST(DiagnosticsLog, NoRecordMeansNoBanner) {
  UdpReceiver receiver;
  {
    DiagnosticsLog log;
    log.SetRemoteTarget("127.0.0.1", receiver.Port());
    log.GetNarrowStream() << std::flush;
  }
  EXPECT_EQ(receiver.ReceiveAllBefore("mark"), "");
}

TEST(DiagnosticsLog, PortBelowOneKeepsRecordsHere) {
  for (const std::int32_t port : {0, -1, -5000}) {
    KeptLog kept;
    kept.mLog.SetRemoteTarget("127.0.0.1", port);
    kept.mLog.Write("here");
    EXPECT_THAT(kept.mRecords, ElementsAre("here\n")) << port;
  }
}

TEST(DiagnosticsLog, HostStaysWhenNoneIsGiven) {
  UdpReceiver receiver;
  DiagnosticsLog log;
  log.SetRemoteTarget("127.0.0.1", 1);
  log.SetRemoteTarget(nullptr, receiver.Port());
  log.Write("x");
  ExpectBanner(receiver);
  EXPECT_EQ(receiver.Receive(), "x\n");
}

TEST(DiagnosticsLog, TooLongDatagramIsDroppedAndTheNextArrives) {
  UdpReceiver receiver;
  DiagnosticsLog log;
  log.SetRemoteTarget("127.0.0.1", receiver.Port());
  log.Write(std::string(100'000, 'x'));
  log.Write("after");
  ExpectBanner(receiver);
  EXPECT_EQ(receiver.Receive(), "after\n");
}

TEST(DiagnosticsLog, DatagramWithoutTextOnlyOpensTheWay) {
  UdpReceiver receiver;
  DiagnosticsLog log;
  log.SendDatagram("127.0.0.1", receiver.Port(), nullptr);
  log.SendDatagram("127.0.0.1", receiver.Port(), "");
  ExpectBanner(receiver);
  EXPECT_EQ(receiver.ReceiveAllBefore("mark"), "");
}

TEST(DiagnosticsLog, UnknownHostSendsToThisMachine) {
  KeptLog kept;
  kept.mLog.SetRemoteTarget("no such host", 9);
  kept.mLog.Write("nobody hears this");
  kept.mLog.Write("nor this");
  EXPECT_THAT(kept.mRecords, IsEmpty());
}

TEST(DiagnosticsLog, NothingShowsUnlessTheConsoleIsOpen) {
  const auto silent = RunInChild([] {
    LogRecord("record");
    GetDiagnosticsLog().GetWideStream() << L"wide" << std::flush;
  });
  EXPECT_EQ(silent.exitStatus, 0);
  EXPECT_EQ(silent.output, "");
  const auto shown = RunInChild([] {
    GetDiagnosticsLog().OpenConsole();
    LogRecord(
        "r\xC3\xA4"
        "cord");
    GetDiagnosticsLog().GetWideStream() << L"wide \u20AC" << std::endl;
    GetDiagnosticsLog().GetNarrowStream() << "at once";
    std::cerr << " and beside it";
  });
  EXPECT_EQ(shown.output,
            "r\xC3\xA4"
            "cord\nwide \xE2\x82\xAC\nat once and beside it");
}

TEST(DiagnosticsLog, UnflushedRecordGoesOutWhenTheProcessEnds) {
  UdpReceiver receiver;
  const auto result = RunInChild([&] {
    GetDiagnosticsLog().SetRemoteTarget("127.0.0.1", receiver.Port());
    GetDiagnosticsLog().GetNarrowStream() << "last words";
    std::exit(0);
  });
  EXPECT_EQ(result.exitStatus, 0);
  ExpectBanner(receiver);
  EXPECT_EQ(receiver.Receive(), "last words");
}

TEST(DiagnosticsLog, FailingStreamLosesItsRecordAlone) {
  class Failing : public std::stringbuf {
   public:
    bool mFails = true;

   protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
      return mFails ? 0 : std::stringbuf::xsputn(text, size);
    }
  };
  Failing buffer;
  std::ostream stream(&buffer);
  stream.exceptions(std::ios::badbit);
  DiagnosticsLog log;
  std::ostream& former = log.SetNarrowStream(stream);
  log.Write("lost");
  buffer.mFails = false;
  log.Write("kept");
  EXPECT_EQ(buffer.str(), "kept\n");
  log.SetNarrowStream(former);
}

TEST(DiagnosticsLog, RecordsOfManyThreadsStayWhole) {
  constexpr int kThreads = 4;
  constexpr int kRecords = 500;
  LogCapture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < kRecords; ++i) LogRecord(std::string(20, static_cast<char>('a' + t)));
    });
  }
  for (auto& thread : threads) thread.join();
  std::istringstream lines(capture.Text());
  std::vector<int> counts(kThreads);
  for (std::string line; std::getline(lines, line);) {
    const int thread = line.empty() ? -1 : line[0] - 'a';
    ASSERT_TRUE(thread >= 0 && thread < kThreads) << line;
    ASSERT_EQ(line, std::string(20, line[0]));
    ++counts[static_cast<std::size_t>(thread)];
  }
  EXPECT_EQ(counts, std::vector<int>(kThreads, kRecords));
}

}  // namespace
}  // namespace TF
