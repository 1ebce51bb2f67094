#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/ui.h"

namespace tavrine::platform {
namespace {

// Catches the calendar fields' offsets (months from 0, years from 1900).
TEST(SystemClock, LocalTimeFieldsAreInRange) {
  LocalTime now = SystemClock().Now();
  EXPECT_GE(now.year, 2024);
  EXPECT_TRUE(now.month >= 1 && now.month <= 12 && now.day >= 1 && now.day <= 31) << now.month;
  EXPECT_TRUE(now.hour <= 23 && now.minute <= 59 && now.second <= 60 && now.millisecond <= 999);
}

TEST(SystemClock, SleepMovesTheSteadyClock) {
  std::uint64_t before = SystemClock().SteadyMs();
  SystemClock().Sleep(60);
  std::uint64_t after = SystemClock().SteadyMs();
  // GetTickCount64 ticks in ~16 ms steps.
  EXPECT_GE(after - before, 40u);
  EXPECT_LT(after - before, 5000u);
}

TEST(SystemUi, ClosingAWindowThatIsNotThereFails) {
  EXPECT_FALSE(SystemUi().CloseWindowByTitle(L"TavrinE - no such window 7f3a"));
  SystemUi().PumpMessages();
}

}  // namespace
}  // namespace tavrine::platform
