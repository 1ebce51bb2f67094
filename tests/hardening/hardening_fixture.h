#pragma once
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/services.h"
#include "session_fixture.h"

namespace tavrine::testing {

// Pauses are recorded and skipped, but time runs for real: the engine
// time-out is measured against the steady clock, so a hanging engine must
// meet a clock that moves.
class RealTimeClock : public platform::Clock {
 public:
  platform::LocalTime Now() override;
  std::uint64_t SteadyMs() override;
  void Sleep(std::uint32_t ms) override { pauses_.push_back(ms); }
  const std::vector<std::uint32_t>& pauses() const { return pauses_; }

 private:
  std::vector<std::uint32_t> pauses_;
};

// The session fixture with a one-second engine time-out and the real-time clock.
class HardeningSession : public SessionTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Replaces the scenario and starts the engine's answer queues again.
  void Script(const EngineScenario& scenario);
  // Trace log bytes written since the last call.
  std::string NewTrace();

  RealTimeClock real_clock_;
  std::optional<platform::ScopedServices> real_time_;
  std::size_t trace_seen_ = 0;
};

inline constexpr char kTimeoutConfiguration[] =
    "[ProductInfo]\r\nProductNumber=7\r\nProductName=TavrinE\r\n"
    "ProductInstallationName=TavrinETest\r\nProductTreeViewName=TavrinE Backup\r\n"
    "Language=English\r\nProductCaption=TavrinE Online Backup\r\nExeGroup=TavrinE\r\n"
    "[ConnectionInfo]\r\nDomainName=localhost\r\nIPAddress1=127.0.0.1\r\nPort=443\r\n"
    "EngineTimeoutSeconds=1\r\n";

}  // namespace tavrine::testing
