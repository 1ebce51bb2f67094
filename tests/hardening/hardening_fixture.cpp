#include "hardening_fixture.h"

#include <filesystem>

#include "support/temp_folder.h"

namespace tavrine::testing {

platform::LocalTime RealTimeClock::Now() { return platform::SystemClock().Now(); }

std::uint64_t RealTimeClock::SteadyMs() { return platform::SystemClock().SteadyMs(); }

void HardeningSession::SetUp() {
  SessionTest::SetUp();
  install_.WriteFile(L"Configuration.ini", kTimeoutConfiguration);
  platform::Services seams;
  seams.clock = &real_clock_;
  real_time_.emplace(seams);
}

void HardeningSession::TearDown() {
  real_time_.reset();
  SessionTest::TearDown();
}

void HardeningSession::Script(const EngineScenario& scenario) {
  std::error_code ignored;
  std::filesystem::remove(install_.path() / "engine-journal.txt", ignored);
  install_.SetScenario(scenario);
}

std::string HardeningSession::NewTrace() {
  std::string all = TraceText();
  std::string fresh = all.size() > trace_seen_ ? all.substr(trace_seen_) : std::string();
  trace_seen_ = all.size();
  return fresh;
}

}  // namespace tavrine::testing
