#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace tavrine::platform {

namespace {

class PosixClock : public Clock {
 public:
  LocalTime Now() override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    localtime_r(&now.tv_sec, &parts);
    return LocalTime{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                     parts.tm_min,         parts.tm_sec,     static_cast<int>(now.tv_nsec / 1000000)};
  }

  std::uint64_t SteadyMs() override {
    auto since = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
  }

  void Sleep(std::uint32_t ms) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
  }
};

}  // namespace

Clock& SystemClock() {
  static PosixClock clock;
  return clock;
}

}  // namespace tavrine::platform
