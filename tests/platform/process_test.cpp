#include "platform/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cwctype>

#include "platform/path.h"
#include "support/engine_harness.h"

namespace tavrine::platform {
namespace {

using testing::EngineScenario;

// Generous: the first program started in a fresh Wine prefix is slow.
constexpr std::uint32_t kStartBudgetMs = 30000;
// The reference engine under a name no other test starts, so that a search
// by name finds this run only.
constexpr wchar_t kName[] = L"TavrinEProcessTest.exe";

// The engine journals the parameter text as received and its working folder.
class Process : public ::testing::Test {
 protected:
  std::unique_ptr<RunningProcess> Start(const EngineScenario& scenario) {
    install_.SetScenario(scenario);
    std::filesystem::create_directories(exchange_);
    return SystemProcessLauncher().Start(install_.Program(kName), Parameters(),
                                         FromFsPath(work_.path()));
  }
  // Spaces in the folder: the path travels unquoted between the angle brackets.
  std::wstring Parameters() const { return L" 115<" + FromFsPath(exchange_) + L">"; }
  bool Answered() const { return std::filesystem::exists(exchange_ / "DLLOutput.txt"); }

  testing::EngineInstall install_{{.folder_name = L"install dir", .aliases = {kName}}};
  testing::TempFolder work_;
  std::filesystem::path exchange_ = install_.path() / "exchange folder";
};

TEST_F(Process, PassesTheParameterTextUnchangedAndStartsInTheWorkingFolder) {
  auto process = Start(EngineScenario().On(115).Output(0));
  ASSERT_NE(process, nullptr);
  EXPECT_EQ(process->Wait(kStartBudgetMs), WaitOutcome::kExited);
  auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].params, Parameters());
  EXPECT_TRUE(std::filesystem::equivalent(ToFsPath(runs[0].cwd), work_.path())) << runs[0].cwd;
}

TEST_F(Process, WaitTimesOutThenTerminateEndsTheProgram) {
  auto process = Start(EngineScenario().On(115).Delay(60000).Output(0));
  ASSERT_NE(process, nullptr);
  auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(process->Wait(200), WaitOutcome::kStillRunning);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(190));

  std::wstring shouted = kName;
  for (wchar_t& c : shouted) c = static_cast<wchar_t>(std::towupper(c));
  EXPECT_TRUE(IsProcessRunning(shouted));
  EXPECT_FALSE(IsProcessRunning(L"tavrine-no-such-program.exe"));
  EXPECT_FALSE(IsProcessRunning(L""));

  EXPECT_TRUE(process->Terminate(0));
  EXPECT_EQ(process->Wait(kStartBudgetMs), WaitOutcome::kExited);
  EXPECT_FALSE(Answered());
}

TEST_F(Process, DestroyingTheObjectLeavesTheProgramRunning) {
  Start(EngineScenario().On(115).Delay(300).Output(0)).reset();
  EXPECT_TRUE(testing::WaitUntil([&] { return Answered(); }, kStartBudgetMs));
}

TEST_F(Process, AMissingProgramGivesNull) {
  EXPECT_EQ(SystemProcessLauncher().Start(install_.Program(L"no-such-program.exe"), L" 1<x>",
                                          install_.folder()),
            nullptr);
}

}  // namespace
}  // namespace tavrine::platform
