#include "engine/engine_run.h"

#include <gtest/gtest.h>

#include <functional>

#include "foundation/configuration.h"
#include "platform/path.h"
#include "platform/services.h"
#include "support/engine_harness.h"
#include "support/fake_clock.h"
#include "support/recording_ui.h"

namespace tavrine::engine {
namespace {

using testing::EngineInstall;
using testing::EngineScenario;

class EngineRunTest : public ::testing::Test {
 protected:
  EngineRunTest() : install_({.folder_name = L"install d\u00efr"}) {
    folder_ = install_.folder() + platform::kPathSeparator + L"ex \u00e9t\u00e9";
    std::filesystem::create_directories(platform::ToFsPath(folder_));
    foundation::LoadedConfiguration().engine_timeout_seconds = 30;
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
  EXPECT_EQ(platform::ToFsPath(runs[0].cwd), platform::ToFsPath(install_.folder()));
  EXPECT_TRUE(std::filesystem::exists(platform::ToFsPath(folder_) / "DLLOutput.txt"));
}

TEST_F(EngineRunTest, AnEmptyProgramNameIsRefusedRatherThanOpeningTheFolder) {
  foundation::LoadedConfiguration().client_program_name.clear();
  EXPECT_EQ(StartEngine(ConfiguredEngineProgram(), 2, folder_), nullptr);
  EXPECT_TRUE(install_.Journal().empty());
}

// Still running for the first `running` waits, then ended.
class ScriptedProcess : public platform::RunningProcess {
 public:
  explicit ScriptedProcess(int running) : running_(running) {}
  platform::WaitOutcome Wait(std::uint32_t timeout_ms) override {
    waits.push_back(timeout_ms);
    if (terminated || running_ == 0) return platform::WaitOutcome::kExited;
    if (running_ > 0) --running_;
    return platform::WaitOutcome::kStillRunning;
  }
  bool Terminate(std::uint32_t) override { return terminated = true; }
  std::intptr_t Release() override { return 0; }

  std::vector<std::uint32_t> waits;
  bool terminated = false;

 private:
  int running_;  // negative: never ends
};

TEST(EngineWaits, SlicesPausesAndMessagesPerFlavour) {
  struct Case {
    const char* name;
    std::function<RunEnd(platform::RunningProcess*)> wait;
    int running;
    RunEnd end;
    std::size_t slices;
    std::size_t pauses;  // of 100 ms, nothing else
    int pumps;
    std::uint32_t slice_ms = 300;
  };
  using platform::RunningProcess;
  constexpr auto plain = [](RunningProcess* p) { return WaitPlain(p); };
  constexpr auto pausing = [](RunningProcess* p) { return WaitPausing(p, 100); };
  constexpr auto pumping = [](RunningProcess* p) { return WaitPumping(p, 100); };
  testing::TempFolder temp;
  const std::wstring marker = temp.wpath() + platform::kPathSeparator + L"cancel.txt";
  testing::WriteFileBytes(platform::ToFsPath(marker), "");
  const auto cancellable = [&](RunningProcess* p) { return WaitCancellable(p, marker); };
  const Case cases[] = {
      {"plain", plain, 3, RunEnd::kExited, 4, 0, 0},
      {"pausing", pausing, 3, RunEnd::kExited, 4, 3, 0},
      {"pumping", pumping, 3, RunEnd::kExited, 4, 3, 3},
      {"pumping, ends at once", pumping, 0, RunEnd::kExited, 1, 0, 0},
      // The pauses alone reach the 1 s limit on the fake clock.
      {"pumping, never ends", pumping, -1, RunEnd::kTimedOut, 10, 10, 10},
      // Only the program it waits for is ended, within a slice of the marker.
      {"cancellable, a marker", cancellable, -1, RunEnd::kCancelled, 1, 0, 1, 1000},
  };
  for (const Case& c : cases) {
    testing::FakeClock clock;
    testing::RecordingUi ui;
    platform::ScopedServices seams({.clock = &clock, .ui = &ui, .module_folder = {}});
    foundation::LoadedConfiguration().engine_timeout_seconds = 1;
    ScriptedProcess process(c.running);
    EXPECT_EQ(c.wait(&process), c.end) << c.name;
    EXPECT_EQ(process.waits, std::vector<std::uint32_t>(c.slices, c.slice_ms)) << c.name;
    EXPECT_EQ(clock.pauses(), std::vector<std::uint32_t>(c.pauses, 100u)) << c.name;
    EXPECT_EQ(ui.pumps(), c.pumps) << c.name;
    EXPECT_EQ(process.terminated, c.end != RunEnd::kExited) << c.name;
  }
  EXPECT_EQ(WaitPumping(nullptr, 100), RunEnd::kNotStarted);
}

}  // namespace
}  // namespace tavrine::engine
