#include <gtest/gtest.h>

#include <limits>

#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/tokenizer.h"
#include "support/temp_folder.h"

namespace tavrine::foundation {
namespace {

using testing::ReadFileBytes;
using testing::TempFolder;
using testing::WriteFileBytes;

TEST(TextFile, Utf16WriterUsesBomCrlfAndSurrogatePairs) {
  TempFolder folder;
  std::wstring file = folder.wpath() + L"/out.txt";
  ASSERT_TRUE(WriteUtf16Lines(file, {L"ab", L"", L"\u20AC"}));
  EXPECT_EQ(ReadFileBytes(folder.path() / "out.txt"),
            std::string("\xFF\xFE" "a\0b\0\r\0\n\0\r\0\n\0\xAC\x20\r\0\n\0", 20));
}

TEST(TextFile, AnsiReaderSplitsOnCrLfAndCrlf) {
  TempFolder folder;
  struct Case {
    std::string bytes;
    std::vector<std::wstring> lines;
  } cases[] = {
      {"", {}},
      {"\r\n", {L""}},
      {"a\r\nb", {L"a", L"b"}},
      {"a\rb\nc\r\n", {L"a", L"b", L"c"}},
      {"a\n\nb\n", {L"a", L"", L"b"}},
      {"\x80 x", {L"\u20AC x"}},
  };
  for (const auto& c : cases) {
    WriteFileBytes(folder.path() / "in.txt", c.bytes);
    auto lines = ReadAnsiLines(folder.wpath() + L"/in.txt");
    ASSERT_TRUE(lines.has_value());
    EXPECT_EQ(*lines, c.lines) << c.bytes;
  }
  EXPECT_FALSE(ReadAnsiLines(folder.wpath() + L"/missing.txt").has_value());
}

TEST(TextFile, Utf16ReaderToleratesMissingBomAndOddByteCount) {
  TempFolder folder;
  WriteFileBytes(folder.path() / "a.txt", std::string("\xFF\xFEx\0\r\0\n\0y\0", 10));
  EXPECT_EQ(*ReadUtf16Lines(folder.wpath() + L"/a.txt"), (std::vector<std::wstring>{L"x", L"y"}));
  WriteFileBytes(folder.path() / "b.txt", std::string("x\0\n\0y\0z", 7));
  EXPECT_EQ(*ReadUtf16Lines(folder.wpath() + L"/b.txt"), (std::vector<std::wstring>{L"x", L"y"}));
  // An emoji arrives as a surrogate pair and survives a round trip.
  ASSERT_TRUE(WriteUtf16Lines(folder.wpath() + L"/c.txt", {L"\U0001F600"}));
  EXPECT_EQ(*ReadUtf16Lines(folder.wpath() + L"/c.txt"),
            (std::vector<std::wstring>{L"\U0001F600"}));
}

TEST(TextUtil, ParseNumberAcceptsOnlyWholeDecimalNumbers) {
  struct Case {
    const wchar_t* text;
    std::optional<double> value;
  } cases[] = {
      {L"402", 402},   {L" -12009 ", -12009}, {L"+7", 7},       {L"1.5", 1.5},
      {L"2e3", 2000},  {L"", std::nullopt},   {L"abc", std::nullopt}, {L"12abc", std::nullopt},
      {L"1,5", std::nullopt}, {L"0x10", std::nullopt}, {L"inf", std::nullopt}, {L"-", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(ParseNumber(c.text), c.value) << c.text;
}

TEST(TextUtil, IntegerConversionsRoundHalfToEvenAndRejectOverflow) {
  EXPECT_EQ(ParseInt16(L"2.5"), 2);
  EXPECT_EQ(ParseInt16(L"3.5"), 4);
  EXPECT_EQ(ParseInt16(L"32767"), 32767);
  EXPECT_EQ(ParseInt16(L"32768"), std::nullopt);
  EXPECT_EQ(ParseInt32(L"-2147483648"), INT32_MIN);
  EXPECT_EQ(ParseInt32(L"99999999999"), std::nullopt);
  EXPECT_EQ(ParseInt32(L"1e400"), std::nullopt);
  EXPECT_EQ(RoundToInt32(1e300), INT32_MAX);
  EXPECT_EQ(RoundToInt32(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_EQ(RoundToInt32(-0.5), 0);
}

TEST(TextUtil, LeadingNumberReadsThePrefixOrZero) {
  EXPECT_EQ(LeadingNumber(L"1073741824"), 1073741824.0);
  EXPECT_EQ(LeadingNumber(L" 12abc"), 12.0);
  EXPECT_EQ(LeadingNumber(L"abc"), 0.0);
  // A megabyte of digits is read from its start, not scanned again and again.
  EXPECT_GT(LeadingNumber(std::wstring(1 << 20, L'9')), 1e200);
  EXPECT_EQ(LeadingNumber(std::wstring(1 << 20, L'9')), LeadingNumber(std::wstring(256, L'9')));
}

TEST(StringTokenizer, YieldsEmptyTokensBetweenSeparators) {
  StringTokenizer tokens(L"a||b|", L"|");
  std::vector<std::wstring> seen;
  while (tokens.hasMoreTokens()) seen.push_back(tokens.nextToken());
  EXPECT_EQ(seen, (std::vector<std::wstring>{L"a", L"", L"b", L""}));
  EXPECT_EQ(tokens.nextToken(), L"");

  tokens.setText(L"x;y");
  tokens.setSeparator(L";");
  EXPECT_EQ(tokens.nextToken(), L"x");
  EXPECT_EQ(tokens.nextToken(), L"y");
  EXPECT_FALSE(tokens.hasMoreTokens());
}

}  // namespace
}  // namespace tavrine::foundation
