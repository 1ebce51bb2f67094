#include "support/fake_clock.h"

#include <algorithm>
#include <chrono>

namespace tavrine::testing {

FakeClock::FakeClock() : now_{2011, 7, 4, 18, 5, 9, 250} {}

platform::LocalTime FakeClock::Now() { return now_; }

std::uint64_t FakeClock::SteadyMs() {
  // Real time still passes while a test waits for a real engine process.
  auto real = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
  return static_cast<std::uint64_t>(real.count()) + slept_ms_;
}

void FakeClock::Sleep(std::uint32_t ms) {
  pauses_.push_back(ms);
  slept_ms_ += ms;
  // Keep the time of day moving so folder names made after a pause differ.
  std::uint64_t total = now_.millisecond + ms;
  now_.millisecond = static_cast<int>(total % 1000);
  std::uint64_t carry = total / 1000 + static_cast<std::uint64_t>(now_.second);
  now_.second = static_cast<int>(carry % 60);
  carry = carry / 60 + static_cast<std::uint64_t>(now_.minute);
  now_.minute = static_cast<int>(carry % 60);
  now_.hour = static_cast<int>((carry / 60 + static_cast<std::uint64_t>(now_.hour)) % 24);
}

std::size_t FakeClock::CountPauses(std::uint32_t ms) const {
  return static_cast<std::size_t>(std::count(pauses_.begin(), pauses_.end(), ms));
}

}  // namespace tavrine::testing
