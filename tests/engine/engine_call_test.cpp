#include "engine/engine_call.h"

#include <gtest/gtest.h>

#include <climits>

#include "foundation/configuration.h"
#include "foundation/trace_log.h"
#include "platform/path.h"
#include "platform/services.h"
#include "support/engine_harness.h"
#include "support/fake_clock.h"
#include "support/recording_ui.h"

namespace tavrine::engine {
namespace {

using testing::EngineInstall;
using testing::EngineScenario;
namespace fs = std::filesystem;

constexpr std::int32_t kAbort = INT_MIN;  // the scripted attempt gives no result
constexpr EngineCode kBusy[] = {EngineCode::kNoConnection};

// The retry loop over scripted answers: every attempt, hook, renewal and pause.
TEST(RetryPolicy, AttemptsPausesHooksAndRenewal) {
  struct Case {
    const char* name;
    int attempts;
    bool pause_after_last;
    bool pump;
    bool renew;  // a renewal is set
    bool permitted;
    std::vector<std::int32_t> answers;
    RetryStop stop;
    std::int32_t last;
    const char* events;  // a attempt, b before the pause, f after it, r renewal
    std::vector<std::uint32_t> pauses;
  };
  const Case cases[] = {
      {"answer at once", 3, true, false, false, false, {402}, RetryStop::kAnswered, 402, "a", {}},
      {"busy, then an answer", 3, true, false, false, false, {-416, -7},
       RetryStop::kAnswered, -7, "abfa", {1000}},
      {"budget spent, pause after the last too", 3, true, false, false, false,
       {-416, -416, -416}, RetryStop::kBudgetSpent, -416, "abfabfabf", {1000, 1000, 1000}},
      {"budget spent, no pause after the last", 3, false, false, false, false,
       {-416, -416, -416}, RetryStop::kBudgetSpent, -416, "abfabfabf", {1000, 1000}},
      {"messages pumped around the pause", 3, false, true, false, false, {-416, 402},
       RetryStop::kAnswered, 402, "abfa", {1000}},
      {"-505 renews when permitted", 3, true, false, true, true, {-505, 402},
       RetryStop::kAnswered, 402, "ara", {500}},
      {"-505 stops when renewing is not permitted", 3, true, false, true, false, {-505, 402},
       RetryStop::kRenewalRefused, -505, "a", {}},
      {"-505 is an answer without a renewal", 3, true, false, false, true, {-505},
       RetryStop::kAnswered, -505, "a", {}},
      {"renewals use up the budget", 2, true, false, true, true, {-505, -505},
       RetryStop::kBudgetSpent, -505, "arar", {500, 500}},
      {"an attempt without a result keeps the last", 3, true, false, false, false, {-416, kAbort},
       RetryStop::kAborted, -416, "abfa", {1000}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    testing::FakeClock clock;
    testing::RecordingUi ui;
    platform::ScopedServices seams({.clock = &clock, .ui = &ui, .module_folder = {}});
    std::string events;
    RetryPolicy policy;
    policy.attempts = c.attempts;
    policy.rules.push_back({.codes = kBusy,
                            .pause_ms = 1000,
                            .pause_after_last = c.pause_after_last,
                            .pump_around_pause = c.pump,
                            .before_pause = [&] { events += 'b'; },
                            .after_pause = [&] { events += 'f'; }});
    if (c.renew) policy.renew = [&] { events += 'r'; };
    policy.renewal_permitted = c.permitted;
    std::size_t next = 0;
    RetryOutcome outcome = RunWithRetry(policy, [&](const EngineResult& previous) {
      events += 'a';
      // Each attempt starts from the one before it.
      EXPECT_EQ(previous.raw(), next == 0 ? 0 : c.answers[next - 1]);
      const std::int32_t answer = c.answers.at(next++);
      if (answer == kAbort) return std::optional<EngineResult>();
      EngineResult result;
      result.value = answer;
      return std::optional<EngineResult>(result);
    });
    EXPECT_EQ(outcome.stop, c.stop);
    EXPECT_EQ(outcome.last.raw(), c.last);
    EXPECT_EQ(events, c.events);
    EXPECT_EQ(clock.pauses(), c.pauses);
    EXPECT_EQ(ui.pumps(), c.pump ? 2 : 0);
  }
}

class EngineCallTest : public ::testing::Test {
 protected:
  EngineCallTest() : install_({.folder_name = L"install d\u00efr"}) {
    folder_ = install_.folder() + platform::kPathSeparator + L"ex \u00e9t\u00e9";
    fs::create_directories(platform::ToFsPath(folder_));
    foundation::LoadedConfiguration().engine_timeout_seconds = 30;
  }
  std::string Trace() const {
    return testing::ReadFileBytes(platform::ToFsPath(foundation::TraceFilePath()));
  }

  EngineInstall install_;
  testing::FakeClock clock_;
  testing::RecordingUi ui_;
  platform::ScopedServices seams_{{.clock = &clock_, .ui = &ui_, .module_folder = {}}};
  std::wstring folder_;
};

// When nothing (or nothing new) is read, the call keeps what the run before it
// had: every way an engine can fail a round trip, for every operation.
TEST_F(EngineCallTest, WhatIsReadDependsOnHowTheRunEnded) {
  struct Case {
    const char* name;
    EngineScenario scenario;
    const wchar_t* program;
    WaitKind wait;
    bool poll;
    bool read_without_start;
    bool cancel_marker;
    RunEnd end;
    bool read;
    std::size_t poll_pauses;  // of 100 ms
    int timeout_s = 30;
  };
  const Case cases[] = {
      {"exit without an answer", EngineScenario().On(115).Exit(0), L"TavrinEClient.exe",
       WaitKind::kPlain, false, true, false, RunEnd::kExited, true, 0},
      {"garbage output", EngineScenario().On(115).WithFile("DLLOutput.txt", {"\x01\xFF\0garbage\r\n", 11}),
       L"TavrinEClient.exe", WaitKind::kPlain, false, true, false, RunEnd::kExited, true, 0},
      {"hang past the time-out, read anyway", EngineScenario().On(115).Hang(), L"TavrinEClient.exe",
       WaitKind::kPausing, false, true, false, RunEnd::kTimedOut, true, 0, 1},
      {"hang past the time-out, not polled", EngineScenario().On(115).Hang(), L"TavrinEClient.exe",
       WaitKind::kCancellable, true, true, false, RunEnd::kTimedOut, false, 0, 1},
      {"crash, read anyway", EngineScenario().On(115).Crash(), L"TavrinEClient.exe",
       WaitKind::kPlain, false, true, false, RunEnd::kExited, true, 0},
      {"crash, the bounded poll finds nothing", EngineScenario().On(115).Crash(),
       L"TavrinEClient.exe", WaitKind::kPlain, true, true, false, RunEnd::kExited, false, 100},
      {"not started, read anyway", EngineScenario(), L"NoSuchEngine.exe", WaitKind::kPlain, false,
       true, false, RunEnd::kNotStarted, true, 0},
      {"not started, not read", EngineScenario(), L"NoSuchEngine.exe", WaitKind::kPausing, false,
       false, false, RunEnd::kNotStarted, false, 0},
      {"cancel marker", EngineScenario().On(115).Hang(), L"TavrinEClient.exe",
       WaitKind::kCancellable, true, true, true, RunEnd::kCancelled, false, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    install_.Restart(c.scenario);
    clock_.ClearPauses();
    fs::remove_all(platform::ToFsPath(folder_));
    fs::create_directories(platform::ToFsPath(folder_));
    const std::wstring marker = folder_ + platform::kPathSeparator + L"cancel.txt";
    fs::remove(platform::ToFsPath(marker));
    if (c.cancel_marker) testing::WriteFileBytes(platform::ToFsPath(marker), "");
    fs::remove(platform::ToFsPath(foundation::TraceFilePath()));
    foundation::LoadedConfiguration().engine_timeout_seconds = c.timeout_s;
    EngineResult previous;
    previous.value = -416;
    previous.description = L"before";
    EngineResult result = CallEngine({.program = EngineProgramPath(c.program),
                                      .command = 115,
                                      .folder = folder_,
                                      .wait = c.wait,
                                      .cancel_marker = marker,
                                      .poll_result = c.poll,
                                      .read_without_start = c.read_without_start},
                                     nullptr, previous);
    EXPECT_EQ(result.end, c.end);
    EXPECT_EQ(result.read, c.read);
    EXPECT_EQ(result.raw(), -416);
    EXPECT_EQ(result.description, L"before");
    EXPECT_EQ(clock_.CountPauses(100), c.poll_pauses);
    const std::string trace = Trace();
    EXPECT_EQ(trace.find("no result code from the engine") != std::string::npos, c.read);
    EXPECT_EQ(trace.find("Engine run exceeded 1 s and was terminated") != std::string::npos,
              c.end == RunEnd::kTimedOut);
  }
}

// The result file comes after the engine ended (a slow disk): the poll waits for it.
class LateResultClock : public testing::FakeClock {
 public:
  explicit LateResultClock(fs::path file) : file_(std::move(file)) {}
  void Sleep(std::uint32_t ms) override {
    FakeClock::Sleep(ms);
    if (pauses().size() == 5) testing::WriteFileBytes(file_, "402\r\n");
  }

 private:
  fs::path file_;
};

TEST_F(EngineCallTest, AResultFileThatComesLateIsRead) {
  install_.SetScenario(EngineScenario().On(115).Exit(0));
  LateResultClock clock(platform::ToFsPath(folder_) / "DLLOutput.txt");
  platform::ScopedServices late({.clock = &clock, .module_folder = {}});
  EngineResult result = CallEngine(
      {.program = FixedEngineProgram(), .command = 115, .folder = folder_, .poll_result = true},
      nullptr);
  EXPECT_TRUE(result.read);
  EXPECT_EQ(result.raw(), 402);
  EXPECT_EQ(clock.CountPauses(100), 5u);
}

}  // namespace
}  // namespace tavrine::engine
