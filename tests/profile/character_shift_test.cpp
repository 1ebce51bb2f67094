#include "profile/character_shift.h"

#include <gtest/gtest.h>

#include "platform/code_page.h"

namespace tavrine::profile {
namespace {

// The ANSI code page is Windows-1252 natively and under Wine's default locale.
struct ShiftCase {
  const wchar_t* plain;
  const wchar_t* shifted;
};

TEST(ShiftCharacters, RaisesEachAnsiCodeByTwoAndLeavesOutWhatCannotMove) {
  const ShiftCase cases[] = {
      {L"", L""},
      {L"abc", L"cde"},
      {L"~", L"\u20AC"},           // 126 -> 128, the euro sign in 1252
      {L"}", L"\u007F"},           // 125 -> 127
      {L"\u20AC", L"\u201A"},      // 128 -> 130
      {L"\u00E9t\u00E9", L"\u00EBv\u00EB"},
      {L"a\u00FEb", L"cd"},        // 254 + 2 is past the code page
      {L"a\u00FFb", L"cd"},
      {L"a\u0416b", L"cd"},        // Cyrillic has no code in 1252
      {L" 9", L"\";"},
  };
  for (const ShiftCase& c : cases) {
    EXPECT_EQ(ShiftCharacters(c.plain), c.shifted) << "plain: " << ::testing::PrintToString(c.plain);
  }
}

TEST(ShiftCharacters, UnshiftGivesBackEveryTextTheShiftCanCarry) {
  std::wstring every_code;
  for (unsigned code = 0; code + 2 < 256; ++code) every_code += *platform::CharOfAnsiCode(code);
  for (const std::wstring& text : {std::wstring(L"P@ssw0rd!"), std::wstring(L"\u00C4rger~}"),
                                   every_code}) {
    EXPECT_EQ(UnshiftCharacters(ShiftCharacters(text)), text);
    // The store's shift is the same wherever this one carries the text.
    EXPECT_EQ(ShiftForStorage(text), ShiftCharacters(text));
  }
}

TEST(ShiftForStorage, RoundTripsTextTheRequestShiftWouldMangle) {
  const wchar_t* texts[] = {
      L"\u00FE\u00FF",                      // wrap to codes 0 and 1
      L"\u0416\u044E\u043B\u044C",          // outside the code page
      L"x\U0001F600y",                      // beyond the BMP
      L"~\u00FFa\u0416\u20AC",
      L"",
  };
  for (const wchar_t* text : texts) {
    std::optional<std::wstring> stored = ShiftForStorage(text);
    ASSERT_TRUE(stored) << ::testing::PrintToString(text);
    EXPECT_EQ(UnshiftFromStorage(*stored), text);
  }
  EXPECT_EQ(ShiftForStorage(L"\u00FF"), std::wstring(1, L'\x01'));
}

}  // namespace
}  // namespace tavrine::profile
