#include "platform/clock.h"

#include <windows.h>

namespace tavrine::platform {

namespace {

class Win32Clock : public Clock {
 public:
  LocalTime Now() override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return LocalTime{now.wYear, now.wMonth,  now.wDay,         now.wHour,
                     now.wMinute, now.wSecond, now.wMilliseconds};
  }

  std::uint64_t SteadyMs() override { return GetTickCount64(); }

  void Sleep(std::uint32_t ms) override { ::Sleep(ms); }
};

}  // namespace

Clock& SystemClock() {
  static Win32Clock clock;
  return clock;
}

}  // namespace tavrine::platform
