#include "platform/process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>
#include <cwctype>
#include <optional>

#include "platform/path.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

using testing::TempFolder;
using testing::TestProgramFolder;

// Generous: the first program started in a fresh Wine prefix is slow.
constexpr std::uint32_t kStartBudgetMs = 30000;

std::wstring ProbeProgram() { return FromFsPath(TestProgramFolder() / TAVRINE_PROBE_FILE); }

std::wstring ProbeName() { return Utf8ToWide(TAVRINE_PROBE_FILE); }

// The probe's parameters, shaped like the engine's: " <ms><folder>".
std::wstring ProbeParameters(unsigned ms, const std::filesystem::path& report_folder) {
  return L" " + std::to_wstring(ms) + L"<" + FromFsPath(report_folder) + L">";
}

struct Report {
  std::wstring parameters;
  std::filesystem::path working_folder;
};

std::optional<Report> WaitForReport(const std::filesystem::path& folder, std::uint32_t budget_ms) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(budget_ms);
  std::filesystem::path file = folder / "probe.txt";
  while (std::chrono::steady_clock::now() < deadline) {
    std::ifstream in(file, std::ios::binary);
    std::string parameters, working_folder;
    if (std::getline(in, parameters) && std::getline(in, working_folder)) {
      return Report{Utf8ToWide(parameters), ToFsPath(Utf8ToWide(working_folder))};
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return std::nullopt;
}

class Process : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(report_folder_);
    std::filesystem::create_directories(work_folder_);
  }

  std::unique_ptr<RunningProcess> StartProbe(unsigned ms) {
    return SystemProcessLauncher().Start(ProbeProgram(), ProbeParameters(ms, report_folder_),
                                         FromFsPath(work_folder_));
  }

  TempFolder temp_;
  // Spaces in both folders: the path travels unquoted between the angle brackets.
  std::filesystem::path report_folder_ = temp_.path() / "exchange folder";
  std::filesystem::path work_folder_ = temp_.path() / "work folder";
};

TEST_F(Process, PassesTheParameterTextUnchangedAndStartsInTheWorkingFolder) {
  auto process = StartProbe(0);
  ASSERT_NE(process, nullptr);
  EXPECT_EQ(process->Wait(kStartBudgetMs), WaitOutcome::kExited);

  std::optional<Report> report = WaitForReport(report_folder_, 5000);
  ASSERT_TRUE(report.has_value());
  EXPECT_EQ(report->parameters, ProbeParameters(0, report_folder_));
  EXPECT_TRUE(std::filesystem::equivalent(report->working_folder, work_folder_))
      << report->working_folder;
}

TEST_F(Process, WaitTimesOutThenTerminateEndsTheProgram) {
  auto process = StartProbe(60000);
  ASSERT_NE(process, nullptr);
  auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(process->Wait(200), WaitOutcome::kStillRunning);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(190));

  EXPECT_TRUE(IsProcessRunning(ProbeName()));
  std::wstring shouted = ProbeName();
  for (wchar_t& c : shouted) c = static_cast<wchar_t>(std::towupper(c));
  EXPECT_TRUE(IsProcessRunning(shouted));
  EXPECT_FALSE(IsProcessRunning(L"tavrine-no-such-program.exe"));
  EXPECT_FALSE(IsProcessRunning(L""));

  EXPECT_TRUE(process->Terminate(0));
  EXPECT_EQ(process->Wait(kStartBudgetMs), WaitOutcome::kExited);
  EXPECT_FALSE(WaitForReport(report_folder_, 0).has_value());
}

TEST_F(Process, DestroyingTheObjectLeavesTheProgramRunning) {
  StartProbe(300).reset();
  EXPECT_TRUE(WaitForReport(report_folder_, kStartBudgetMs).has_value());
}

TEST_F(Process, AMissingProgramGivesNull) {
  std::wstring missing = FromFsPath(TestProgramFolder() / "no-such-program.exe");
  EXPECT_EQ(SystemProcessLauncher().Start(missing, L" 1<x>", FromFsPath(work_folder_)), nullptr);
}

}  // namespace
}  // namespace tavrine::platform
