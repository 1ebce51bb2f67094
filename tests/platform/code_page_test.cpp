#include "platform/code_page.h"

#include <gtest/gtest.h>

namespace tavrine::platform {
namespace {

TEST(CodePage, CharactersAndTheirAnsiCodes) {
  struct Case {
    unsigned code;
    wchar_t c;
  };
  const Case cases[] = {
      {0x41, L'A'}, {0x80, L'\u20AC'}, {0x9F, L'\u0178'}, {0xA0, L'\u00A0'}, {0xFF, L'\u00FF'},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CharOfAnsiCode(c.code), c.c) << std::hex << c.code;
    EXPECT_EQ(AnsiCodeOf(c.c), c.code) << std::hex << c.code;
  }
}

TEST(CodePage, CharactersOutsideTheCodePageHaveNoCode) {
  // U+0100 would pass as 'A' through a best-fit mapping.
  for (wchar_t c : {L'\u0100', L'\u4E2D', L'\u2603'}) {
    EXPECT_EQ(AnsiCodeOf(c), std::nullopt) << static_cast<unsigned>(c);
  }
  EXPECT_EQ(CharOfAnsiCode(0x100), std::nullopt);
}

TEST(CodePage, TextConversions) {
  std::string all;
  for (int b = 1; b < 256; ++b) all.push_back(static_cast<char>(b));
  EXPECT_EQ(WideToAnsi(AnsiToWide(all)), all);
  EXPECT_EQ(AnsiToWide("a\x80\xE9z"), L"a\u20AC\u00E9z");
  EXPECT_EQ(WideToAnsi(L"x\u4E2Dy"), "x?y");
  EXPECT_EQ(AnsiToWide(""), L"");
  // Embedded NULs are data, not terminators.
  EXPECT_EQ(AnsiToWide(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

}  // namespace
}  // namespace tavrine::platform
