#include "platform/path.h"

#include <gtest/gtest.h>

namespace tavrine::platform {
namespace {

TEST(Path, Utf8Conversions) {
  struct Case {
    const wchar_t* wide;
    const char* utf8;
  };
  const Case cases[] = {
      {L"plain", "plain"},
      {L"Gr\u00FC\u00DFe \u20AC", "Gr\xC3\xBC\xC3\x9F" "e \xE2\x82\xAC"},
      {L"\u4E2D\u6587", "\xE4\xB8\xAD\xE6\x96\x87"},
      // Outside the BMP: a surrogate pair on Windows, one unit elsewhere.
      {L"\U0001F600", "\xF0\x9F\x98\x80"},
      {L"", ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(WideToUtf8(c.wide), c.utf8);
    EXPECT_EQ(Utf8ToWide(c.utf8), c.wide);
  }
}

TEST(Path, MalformedUtf8BecomesReplacementCharacters) {
  EXPECT_EQ(Utf8ToWide("a\xFF" "b"), L"a\uFFFD" L"b");
  EXPECT_EQ(Utf8ToWide("a\xC3"), L"a\uFFFD");
}

}  // namespace
}  // namespace tavrine::platform
