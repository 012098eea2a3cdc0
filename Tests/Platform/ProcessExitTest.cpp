#include "Platform/ProcessExit.h"

#include <gtest/gtest.h>

#include "Platform/DebugOutput.h"
#include "Tests/Support/ProcessState.h"

namespace Platform {
namespace {

TEST(ProcessExit, OutputIsCompleteAndNothingElseRuns) {
  const auto result = TestSupport::RunInChild([] {
    std::atexit([] { std::fputs("handler", stderr); });
    std::printf("printed ");
    std::cout << "streamed";
    ExitProcess(5);
  });
  EXPECT_EQ(result.exitStatus, 5);
  EXPECT_EQ(result.output, "printed streamed");
}

TEST(DebugOutput, NothingReachesTheTerminal) {
  const auto result = TestSupport::RunInChild([] {
    WriteDebugOutput("a record with %s\n");
    WriteDebugOutput("");
    WriteDebugOutput(std::string(100'000, 'x'));
  });
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.output, "");
}

}  // namespace
}  // namespace Platform
