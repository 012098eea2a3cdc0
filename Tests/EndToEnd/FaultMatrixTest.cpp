#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <random>

#include "Tests/EndToEnd/FaultRig.h"
#include "Tests/EndToEnd/ProgramRun.h"

// Updates of devices that misbehave. They mostly wait, so many processes share the cases, each
// with an engine and a device of its own.

namespace {

using namespace EndToEnd;

constexpr std::size_t kProcesses = 24;
constexpr std::size_t kRandomPairs = 200;

// Which of the processes this one is; set by the first of them.
constexpr const char* kShareVariable = "FAULT_SHARE";
// What a failure printed: a case to be run instead of random ones, or their seed, which may
// also be "random".
constexpr const char* kCaseVariable = "FAULT_CASE";
constexpr const char* kSeedVariable = "FAULT_SEED";
constexpr const char* kUsualSeed = "1";

void RunShare(const std::vector<FaultCase>& cases, std::size_t share) {
  for (std::size_t index = share; index < cases.size(); index += kProcesses) {
    const testing::ScopedTrace trace(__FILE__, __LINE__,
                                     fmt::format("{}='{}'", kCaseVariable, Describe(cases[index])));
    FaultRun(cases[index]).Run();
  }
}

void RunCases(const std::vector<FaultCase>& cases, std::map<std::string, std::string> environment = {}) {
  if (const char* share = std::getenv(kShareVariable)) return RunShare(cases, std::stoul(share));
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  std::deque<ProgramRun> processes;
  for (std::size_t share = 0; share < std::min(kProcesses, cases.size()); ++share) {
    ProgramOptions options;
    options.mProgram = "endtoend_tests";
    options.mArguments = {fmt::format("--gtest_filter={}.{}", test.test_suite_name(), test.name())};
    options.mEnvironment = environment;
    options.mEnvironment[kShareVariable] = std::to_string(share);
    processes.emplace_back(options);
  }
  for (ProgramRun& process : processes) EXPECT_EQ(process.Wait(), 0) << process.Output() << process.Errors();
  std::cout << fmt::format("{} cases\n", cases.size());
}

TEST(FaultMatrix, EachFaultAloneHasItsEnding) {
  RunCases(SingleFaults());
}

TEST(FaultMatrix, RepeatedAndHardFaultsHaveTheirEnding) {
  RunCases(HardFaults());
}

TEST(FaultMatrix, RandomPairsKeepTheRules) {
  if (const char* text = std::getenv(kCaseVariable)) return FaultRun(ParseFaultCase(text)).Run();
  const char* chosen = std::getenv(kSeedVariable);
  const std::string text = chosen ? chosen : kUsualSeed;
  const unsigned long seed = text == "random" ? std::random_device()() : std::stoul(text);
  std::cout << fmt::format("{}={}\n", kSeedVariable, seed);
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  std::vector<FaultCase> cases(kRandomPairs);
  std::generate(cases.begin(), cases.end(), [&] { return RandomPair(random); });
  RunCases(cases, {{kSeedVariable, std::to_string(seed)}});
}

// The model that foresees pairs knows what the table says by itself.
TEST(FaultMatrix, ModelAgreesWithWhatIsWrittenByHand) {
  std::vector<FaultCase> cases = SingleFaults();
  for (FaultCase& hard : HardFaults()) cases.push_back(std::move(hard));
  for (const FaultCase& faultCase : cases) {
    SCOPED_TRACE(Describe(faultCase));
    const Expectation foreseen = ExpectRun(faultCase, Simulator::DeviceStatus());
    const Expectation& written = faultCase.mFirstRun.value();
    if (!foreseen.mIsCertain) continue;
    EXPECT_EQ(static_cast<int>(foreseen.mEnding), static_cast<int>(written.mEnding));
    if (written.mEnding != Ending::kSent) continue;
    EXPECT_EQ(foreseen.mLeftOut, written.mLeftOut);
    EXPECT_EQ(foreseen.mMayBeLeftOut, written.mMayBeLeftOut);
    EXPECT_EQ(foreseen.mFewestPasses, written.mFewestPasses);
    EXPECT_EQ(foreseen.mMostPasses, written.mMostPasses);
  }
}

}  // namespace
