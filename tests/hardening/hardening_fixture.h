#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/path.h"
#include "platform/services.h"
#include "session_fixture.h"
#include "support/install_folder.h"

namespace tavrine::testing {

// Pauses are skipped, but time runs for real: the engine time-out is measured
// against the steady clock, so a hanging engine must meet a clock that moves.
class RealTimeClock : public platform::Clock {
 public:
  platform::LocalTime Now() override { return platform::SystemClock().Now(); }
  std::uint64_t SteadyMs() override { return platform::SystemClock().SteadyMs(); }
  void Sleep(std::uint32_t) override {}
};

// The session fixture with a one-second engine time-out and the real-time clock.
class HardeningSession : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    install_.WriteFile(L"Configuration.ini", StandardConfiguration("EngineTimeoutSeconds=1\r\n"));
    real_time_.emplace(platform::Services{.clock = &real_clock_, .module_folder = {}});
  }
  void TearDown() override {
    real_time_.reset();
    SessionTest::TearDown();
  }
  // Trace log bytes written since the last call.
  std::string NewTrace() {
    std::string all = TraceText();
    std::string fresh = all.size() > trace_seen_ ? all.substr(trace_seen_) : std::string();
    trace_seen_ = all.size();
    return fresh;
  }

  RealTimeClock real_clock_;
  std::optional<platform::ScopedServices> real_time_;
  std::size_t trace_seen_ = 0;
};

}  // namespace tavrine::testing
