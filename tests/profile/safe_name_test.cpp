#include "profile/safe_name.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tavrine::profile {
namespace {

TEST(IsSafeName, RefusesOnlyNamesThatCouldLeaveTheWorkRootOrAliasAnother) {
  const std::wstring refused[] = {
      L"", L".", L"..", L"a/b", L"a\\b", L"..\\x", L"../x", L"\\\\server\\share", L"C:",
      L"a:b", L"a<b", L"a>b", L"a\"b", L"a|b", L"a?b", L"a*b", L"a\tb", L"a\nb", L"a\rb",
      std::wstring(L"a\0b", 3), L"a\x7F", L"trailingdot.", L"trailingspace ", L"CON", L"con.txt",
      L"Nul ", L"aux.tar.gz", L"PRN", L"COM1", L"lpt9.log", std::wstring(256, L'x'),
  };
  const std::wstring accepted[] = {
      L"alice", L"J\u00FCrgen", L"\u0416\u0435\u043D\u044F", L"john.doe", L"john.doe@example.com",
      L" leading", L"HOME PC", L"a..b", L"COM0", L"CONSOLE", L"LPT", L"nul1",
      std::wstring(255, L'x'),
  };
  for (const auto& name : refused) EXPECT_FALSE(IsSafeName(name)) << ::testing::PrintToString(name);
  for (const auto& name : accepted) EXPECT_TRUE(IsSafeName(name)) << ::testing::PrintToString(name);
}

TEST(SameUserName, IgnoresCaseBeyondAscii) {
  const std::tuple<const wchar_t*, const wchar_t*, bool> cases[] = {
      {L"Alice", L"aLICE", true},
      {L"J\u00DCRGEN", L"j\u00FCrgen", true},
      {L"\u0416\u0415\u041D\u042F", L"\u0436\u0435\u043D\u044F", true},
      {L"\u0141ukasz", L"\u0142UKASZ", true},
      {L"\u0178", L"\u00FF", true},
      {L"alice", L"alicE ", false},
      {L"a", L"b", false},
      {L"\u00D7", L"\u00F7", false},  // multiplication and division signs are not letters
  };
  for (const auto& [a, b, same] : cases) {
    EXPECT_EQ(SameUserName(a, b), same)
        << ::testing::PrintToString(a) << " vs " << ::testing::PrintToString(b);
  }
}

}  // namespace
}  // namespace tavrine::profile
