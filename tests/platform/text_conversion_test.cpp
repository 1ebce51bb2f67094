#include <gtest/gtest.h>

#include <utility>

#include "platform/code_page.h"
#include "platform/path.h"

namespace tavrine::platform {
namespace {

TEST(Path, Utf8Conversions) {
  const std::pair<const wchar_t*, const char*> cases[] = {
      {L"plain", "plain"},
      {L"Gr\u00FC\u00DFe \u20AC", "Gr\xC3\xBC\xC3\x9F" "e \xE2\x82\xAC"},
      {L"\u4E2D\u6587", "\xE4\xB8\xAD\xE6\x96\x87"},
      // Outside the BMP: a surrogate pair on Windows, one unit elsewhere.
      {L"\U0001F600", "\xF0\x9F\x98\x80"},
      {L"", ""},
  };
  for (const auto& [wide, utf8] : cases) {
    EXPECT_EQ(WideToUtf8(wide), utf8);
    EXPECT_EQ(Utf8ToWide(utf8), wide);
  }
  // Malformed UTF-8 becomes replacement characters.
  EXPECT_EQ(Utf8ToWide("a\xFF" "b"), L"a\uFFFD" L"b");
  EXPECT_EQ(Utf8ToWide("a\xC3"), L"a\uFFFD");
}

TEST(CodePage, CharactersAndTheirAnsiCodes) {
  const std::pair<unsigned, wchar_t> pairs[] = {
      {0x41, L'A'}, {0x80, L'\u20AC'}, {0x9F, L'\u0178'}, {0xA0, L'\u00A0'}, {0xFF, L'\u00FF'},
  };
  for (const auto& [code, c] : pairs) {
    EXPECT_EQ(CharOfAnsiCode(code), c) << std::hex << code;
    EXPECT_EQ(AnsiCodeOf(c), code) << std::hex << code;
  }
  // Outside the code page: U+0100 would pass as 'A' through a best-fit mapping.
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
