#include "engine/engine_run.h"

#include <gtest/gtest.h>

#include <chrono>

#include "foundation/settings.h"
#include "platform/path.h"
#include "support/engine_harness.h"

namespace tavrine::engine {
namespace {

using testing::EngineInstall;
using testing::EngineInstallOptions;
using testing::EngineScenario;

TEST(EngineParameters, OneLeadingBlankAndTheFolderUnquoted) {
  EXPECT_EQ(EngineParameters(5, L"C:\\a b\\x"), L" 5<C:\\a b\\x>");
  EXPECT_EQ(EngineParameters(115, L""), L" 115<>");
}

class EngineRunTest : public ::testing::Test {
 protected:
  EngineRunTest() : install_(Options()) {
    folder_ = install_.folder() + platform::kPathSeparator + L"ex \u00e9t\u00e9";
    std::filesystem::create_directories(platform::ToFsPath(folder_));
    foundation::CurrentSettings().engine_timeout_seconds = 30;
  }
  static EngineInstallOptions Options() {
    EngineInstallOptions options;
    options.folder_name = L"install d\u00efr";
    return options;
  }
  EngineInstall install_;
  std::wstring folder_;
};

TEST_F(EngineRunTest, TheEngineSeesExactlyTheParametersAndRunsInTheLibraryFolder) {
  install_.SetScenario(EngineScenario().On(114).Output(1));
  EXPECT_EQ(RunEngine(FixedEngineProgram(), 114, folder_), RunEnd::kExited);
  auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].params, L" 114<" + folder_ + L">");
  EXPECT_EQ(runs[0].folder, folder_);
  EXPECT_EQ(platform::ToFsPath(runs[0].cwd), platform::ToFsPath(install_.folder()));
  EXPECT_TRUE(std::filesystem::exists(platform::ToFsPath(folder_) / "DLLOutput.txt"));
}

TEST_F(EngineRunTest, AMissingProgramIsNotWaitedFor) {
  EXPECT_EQ(RunEngine(EngineProgramPath(L"NoSuchEngine.exe"), 114, folder_), RunEnd::kNotStarted);
}

TEST_F(EngineRunTest, AnEmptyProgramNameIsRefusedRatherThanOpeningTheFolder) {
  foundation::CurrentSettings().client_program_name.clear();
  EXPECT_EQ(StartEngine(ConfiguredEngineProgram(), 2, folder_), nullptr);
  EXPECT_EQ(RunEngine(ConfiguredEngineProgram(), 2, folder_), RunEnd::kNotStarted);
  EXPECT_TRUE(install_.Journal().empty());
}

TEST_F(EngineRunTest, AHangingEngineIsTerminatedAtTheConfiguredLimit) {
  install_.SetScenario(EngineScenario().On(114).Hang());
  foundation::CurrentSettings().engine_timeout_seconds = 1;
  auto started = std::chrono::steady_clock::now();
  EXPECT_EQ(RunEngine(FixedEngineProgram(), 114, folder_), RunEnd::kTimedOut);
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(15));
}

TEST_F(EngineRunTest, ACancelMarkerEndsTheCancellableWait) {
  install_.SetScenario(EngineScenario().On(115).Hang());
  std::wstring marker = folder_ + platform::kPathSeparator + L"cancel.txt";
  auto process = StartEngine(FixedEngineProgram(), 115, folder_);
  ASSERT_NE(process, nullptr);
  testing::WriteFileBytes(platform::ToFsPath(marker), "");
  EXPECT_EQ(WaitCancellable(process.get(), marker), RunEnd::kCancelled);
  EXPECT_EQ(process->Wait(5000), platform::WaitOutcome::kExited);
}

TEST_F(EngineRunTest, ACrashEndsTheWaitLikeAnExitWithoutResult) {
  install_.SetScenario(EngineScenario().On(114).Crash());
  EXPECT_EQ(RunEngine(FixedEngineProgram(), 114, folder_), RunEnd::kExited);
  EXPECT_FALSE(std::filesystem::exists(platform::ToFsPath(folder_) / "DLLOutput.txt"));
}

}  // namespace
}  // namespace tavrine::engine
