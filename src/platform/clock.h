#pragma once
#include <cstdint>

namespace tavrine::platform {

struct LocalTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

// Every pause and every time reading goes through here so tests can run
// "ten attempts with 2000 ms pauses" in no time and assert the pauses.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual LocalTime Now() = 0;
  // Monotonic milliseconds, for deadlines.
  virtual std::uint64_t SteadyMs() = 0;
  virtual void Sleep(std::uint32_t ms) = 0;
};

Clock& SystemClock();

}  // namespace tavrine::platform
