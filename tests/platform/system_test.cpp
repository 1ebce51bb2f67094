#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/host_resolver.h"
#include "platform/module_folder.h"
#include "platform/path.h"
#include "support/temp_folder.h"

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

TEST(ModuleFolder, IsTheFolderOfTheProgramHoldingTheCode) {
  std::wstring folder = ModuleFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_NE(folder.back(), kPathSeparator);
  EXPECT_TRUE(std::filesystem::equivalent(ToFsPath(folder), testing::TestProgramFolder()));
}

TEST(HostResolver, DottedIPv4Check) {
  struct Case {
    const wchar_t* text;
    bool valid;
  };
  const Case cases[] = {
      {L"1.2.3.4", true},     {L"255.255.255.255", true}, {L"192.168.001.010", true},
      {L"256.1.1.1", false},  {L"1.2.3", false},          {L"1.2.3.4.5", false},
      {L"1..3.4", false},     {L"1.2.3.4.", false},       {L"", false},
      {L" 1.2.3.4", false},   {L"+1.2.3.4", false},       {L"0001.2.3.4", false},
      {L"\uFF11.2.3.4", false},  // full-width digit one
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IsDottedIPv4(c.text), c.valid) << WideToUtf8(c.text);
  }
}

TEST(HostResolver, ResolvesNamesAndAddressesToDottedText) {
  for (const wchar_t* host : {L"localhost", L"127.0.0.1"}) {
    ResolveResult result = ResolveHostToIPv4(host);
    EXPECT_EQ(result.status, ResolveStatus::kResolved) << WideToUtf8(host);
    EXPECT_EQ(result.text, L"127.0.0.1") << WideToUtf8(host);
  }
  EXPECT_EQ(ResolveHostToIPv4(L"").status, ResolveStatus::kNotFound);
}

TEST(HostResolver, ReverseLookup) {
  ResolveResult loopback = ResolveIPv4ToHost(L"127.0.0.1");
  EXPECT_EQ(loopback.status, ResolveStatus::kResolved);
  EXPECT_FALSE(loopback.text.empty());

  ResolveResult invalid = ResolveIPv4ToHost(L"300.1.1.1");
  EXPECT_EQ(invalid.status, ResolveStatus::kNotFound);
  EXPECT_TRUE(invalid.text.empty());
}

}  // namespace
}  // namespace tavrine::platform
