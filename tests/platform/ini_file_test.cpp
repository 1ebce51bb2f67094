#include "platform/ini_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/path.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

using testing::ReadFileBytes;
using testing::TempFolder;
using testing::WriteFileBytes;

const std::vector<std::string> kSample = {
    "; a comment that must survive writes",
    "[Alpha]",
    "Name=plain",
    "name=later duplicate",
    "  Spaced   =   padded value   ",
    "Tabbed=\tvalue with tabs\t",
    "Double=\"quoted value\"",
    "Single='single quoted'",
    "PadQuote= \" inner spaces \" ",
    "Inner=\"keep \"inner\" quotes\"",
    "Mismatch=\"half'",
    "Lone=\"",
    "Empty=",
    "Equals=a=b",
    "Euro=\x80 5",
    "",
    "[beta]",
    "Name=from beta",
    "[ALPHA]",
    "Late=second section of the same name",
};

std::string Join(const std::vector<std::string>& lines, const std::string& eol) {
  std::string text;
  for (const std::string& line : lines) text += line + eol;
  return text;
}

struct ReadCase {
  const wchar_t* section;
  const wchar_t* key;
  const wchar_t* expected;
};

TEST(IniFile, ReadsValuesByTheProfileRulesWithEitherLineEnd) {
  const ReadCase cases[] = {
      {L"Alpha", L"Name", L"plain"},
      {L"ALPHA", L"NAME", L"plain"},
      {L"alpha", L"spaced", L"padded value"},
      {L"Alpha", L"Tabbed", L"value with tabs"},
      {L"Alpha", L"Double", L"quoted value"},
      {L"Alpha", L"Single", L"single quoted"},
      {L"Alpha", L"PadQuote", L" inner spaces "},
      {L"Alpha", L"Inner", L"keep \"inner\" quotes"},
      {L"Alpha", L"Mismatch", L"\"half'"},
      {L"Alpha", L"Lone", L"\""},
      {L"Alpha", L"Empty", L""},
      {L"Alpha", L"Equals", L"a=b"},
      {L"Alpha", L"Euro", L"\u20AC 5"},
      {L"Beta", L"name", L"from beta"},
      {L"Alpha", L"Missing", L""},
      {L"Gamma", L"Name", L""},
      // Only the first section of a name is searched.
      {L"Alpha", L"Late", L""},
  };
  TempFolder folder;
  for (const char* eol : {"\r\n", "\n"}) {
    SCOPED_TRACE(eol[0] == '\r' ? "CRLF" : "LF");
    // A new file per variant: Wine caches profile files by name.
    auto file = folder.path() / (eol[0] == '\r' ? "crlf.ini" : "lf.ini");
    WriteFileBytes(file, Join(kSample, eol));
    for (const ReadCase& c : cases) {
      EXPECT_EQ(ReadIniString(c.section, c.key, FromFsPath(file)), c.expected)
          << "[" << WideToUtf8(c.section) << "] " << WideToUtf8(c.key);
    }
  }
}

TEST(IniFile, LongValuesAreCutAt2047CharactersAndANulDoesNotEndTheFile) {
  TempFolder folder;
  for (const auto& [stored, read] : {std::pair<std::size_t, std::size_t>{2046, 2046},
                                     {2047, 2047}, {2048, 2047}, {1 << 20, 2047}}) {
    auto file = folder.path() / ("long" + std::to_string(stored) + ".ini");
    WriteFileBytes(file, std::string("[S]\r\nNul=a\0b\r\nK=", 16) + std::string(stored, 'v') +
                             "\r\n");
    EXPECT_EQ(ReadIniString(L"S", L"K", FromFsPath(file)).size(), read) << stored;
  }
}

// An existing key is changed in place (its later duplicate kept), a new key
// goes into its section, a new section at the end; all else stays as it was.
TEST(IniFile, WritesChangeOnlyWhatTheyName) {
  TempFolder folder;
  const auto path = folder.path() / "write.ini";
  const std::wstring file = FromFsPath(path);
  WriteFileBytes(path, Join(kSample, "\r\n"));
  ASSERT_TRUE(WriteIniString(L"ALPHA", L"name", L"changed", file));
  ASSERT_TRUE(WriteIniString(L"Beta", L"Added", L"x y", file));
  ASSERT_TRUE(WriteIniString(L"Gamma", L"Key", L"\u20AC\u00E9", file));
  const ReadCase cases[] = {
      {L"Alpha", L"Name", L"changed"},       {L"beta", L"added", L"x y"},
      {L"gamma", L"KEY", L"\u20AC\u00E9"},    {L"Alpha", L"Spaced", L"padded value"},
      {L"Alpha", L"Double", L"quoted value"}, {L"Alpha", L"Euro", L"\u20AC 5"},
      {L"beta", L"Name", L"from beta"},
  };
  for (const ReadCase& c : cases) {
    EXPECT_EQ(ReadIniString(c.section, c.key, file), c.expected) << WideToUtf8(c.key);
  }
  const std::string text = ReadFileBytes(path);
  EXPECT_NE(text.find("; a comment that must survive writes"), std::string::npos);
  EXPECT_NE(text.find("later duplicate"), std::string::npos);
  EXPECT_LT(text.find("changed"), text.find("[beta]"));
  EXPECT_LT(text.find("[beta]"), text.find("Added=x y"));
  EXPECT_LT(text.find("Added=x y"), text.find("[ALPHA]"));
  // Stored as ANSI, not UTF-8.
  EXPECT_NE(text.find("Key=\x80\xE9"), std::string::npos);
}

TEST(IniFile, AMissingFileReadsEmptyAndIsCreatedByAWriteButNotItsFolder) {
  TempFolder folder;
  std::wstring file = folder.wpath() + kPathSeparator + L"new.ini";
  EXPECT_EQ(ReadIniString(L"Registry", L"VirtualPath", file), L"");
  ASSERT_TRUE(WriteIniString(L"Registry", L"VirtualPath", L"C:\\Work\\", file));
  EXPECT_EQ(ReadIniString(L"Registry", L"VirtualPath", file), L"C:\\Work\\");

  std::wstring nowhere = folder.wpath() + kPathSeparator + L"no-folder" + kPathSeparator + L"x.ini";
  EXPECT_FALSE(WriteIniString(L"Registry", L"VirtualPath", L"v", nowhere));
}

}  // namespace
}  // namespace tavrine::platform
