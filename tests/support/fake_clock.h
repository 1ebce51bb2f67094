#pragma once
#include <cstdint>
#include <vector>

#include "platform/clock.h"

namespace tavrine::testing {

// Records every pause instead of sleeping; its time of day moves only when
// asked to or by the pauses.
class FakeClock : public platform::Clock {
 public:
  FakeClock();
  platform::LocalTime Now() override;
  std::uint64_t SteadyMs() override;
  void Sleep(std::uint32_t ms) override;

  void SetNow(const platform::LocalTime& now) { now_ = now; }
  const std::vector<std::uint32_t>& pauses() const { return pauses_; }
  // How many pauses of exactly `ms` were asked for.
  std::size_t CountPauses(std::uint32_t ms) const;
  void ClearPauses() { pauses_.clear(); }

 private:
  platform::LocalTime now_;
  std::uint64_t slept_ms_ = 0;
  std::vector<std::uint32_t> pauses_;
};

}  // namespace tavrine::testing
