#include "profile/character_shift.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/code_page.h"

namespace tavrine::profile {
namespace {

// The ANSI code page is Windows-1252 natively and under Wine's default locale.
// abc, "" and ~ (-> the euro sign, 128) are the request writer's test's.
TEST(ShiftCharacters, RaisesEachAnsiCodeByTwoAndLeavesOutWhatCannotMove) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {  // plain, shifted
      {L"}", L"\u007F"},           // 125 -> 127
      {L"\u20AC", L"\u201A"},      // 128 -> 130
      {L"\u00E9t\u00E9", L"\u00EBv\u00EB"},
      {L"a\u00FEb", L"cd"},        // 254 + 2 is past the code page
      {L"a\u00FFb", L"cd"},
      {L"a\u0416b", L"cd"},        // Cyrillic has no code in 1252
      {L" 9", L"\";"},
  };
  for (const auto& [plain, shifted] : cases) {
    EXPECT_EQ(ShiftCharacters(plain), shifted) << "plain: " << ::testing::PrintToString(plain);
  }
}

TEST(ShiftForStorage, RoundTripsEveryTextAndIsTheRequestShiftWhereThatCarriesIt) {
  std::wstring every_code;
  for (unsigned code = 0; code + 2 < 256; ++code) every_code += *platform::CharOfAnsiCode(code);
  for (const std::wstring& text : {std::wstring(L"P@ssw0rd!"), std::wstring(L"\u00C4rger~}"),
                                   every_code}) {
    EXPECT_EQ(UnshiftCharacters(ShiftCharacters(text)), text);
    EXPECT_EQ(ShiftForStorage(text), ShiftCharacters(text));
  }
  // Texts the request shift would mangle: wrapping codes, outside the code page, beyond the BMP.
  for (const wchar_t* text : {L"\u00FE\u00FF", L"\u0416\u044E\u043B\u044C", L"x\U0001F600y",
                              L"~\u00FFa\u0416\u20AC", L""}) {
    std::optional<std::wstring> stored = ShiftForStorage(text);
    ASSERT_TRUE(stored) << ::testing::PrintToString(text);
    EXPECT_EQ(UnshiftFromStorage(*stored), text);
  }
  EXPECT_EQ(ShiftForStorage(L"\u00FF"), std::wstring(1, L'\x01'));
}

}  // namespace
}  // namespace tavrine::profile
