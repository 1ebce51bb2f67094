#include <gtest/gtest.h>

#include <cctype>
#include <cwchar>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "browsing/case_fold.h"
#include "browsing/file_time.h"
#include "browsing/linear_scan.h"
#include "browsing/remote_tree.h"
#include "platform/path.h"
#include "platform/services.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"

namespace tavrine::browsing {
namespace {

using testing::TempFolder;

struct Loaded {
  TempFolder temp;
  RemoteListing listing;
};

using FileRead = RemoteListing::FileRead;

std::unique_ptr<Loaded> Load(const std::wstring& text, const std::wstring& machine = L"",
                             FileRead read = FileRead::kMapped) {
  auto loaded = std::make_unique<Loaded>();
  auto file = loaded->temp.path() / "Backupfile.txt";
  testing::WriteFileBytes(file, testing::Utf16LeFile(text));
  loaded->listing.AddFile(platform::FromFsPath(file), machine, read);
  loaded->listing.Finish();
  return loaded;
}

// The same file read by the plain scan, the reference the index is compared with.
LinearScanListing PlainLoad(const Loaded& loaded, const std::wstring& machine = L"") {
  LinearScanListing plain;
  plain.LoadFile(platform::FromFsPath(loaded.temp.path() / "Backupfile.txt"), machine);
  return plain;
}

constexpr std::uint64_t kJan31 = 129409527090000000ULL;  // 01-31-2011 13:05:09, ticks since 1601 UTC

TEST(ListingDate, ConvertsWithoutTimeZoneShift) {
  const std::pair<const wchar_t*, std::uint64_t> good[] = {
      {L"01-31-2011 13:05:09", kJan31}, {L"01-01-1601 00:00:00", 0},
      {L"02-29-2012 23:59:59", 129750335990000000ULL},
      // Other shapes of the same instant, read the general way.
      {L"1-31-2011 13:5:9", kJan31}, {L" 01-31-2011 13:05:09", kJan31},
  };
  const wchar_t* const bad[] = {
      L"02-29-2011 00:00:00", L"13-01-2011 00:00:00",  // no such day, no such month
      L"01-31-2011 13:05", L"01/31/2011 13:05:09",     // four separators, other separators
      L"", L"aa-31-2011 13:05:09",
      L"01-31-2011 13:05:0x", L"01-31-2011 13:05:60",  // the written length, a letter in it
      // Impossible or hostile dates.
      L"02-30-2011 00:00:00", L"00-10-2011 00:00:00", L"12-00-2011 00:00:00",
      L"01-01-1600 00:00:00", L"12-31-99999 23:59:59", L"99999999999999999999-01-2011 00:00:00",
      L"01-01-2011 24:00:00", L"01-01-2011 -1:00:00", L"\x0661\x0662-01-2011 00:00:00",
  };
  for (const auto& [text, ticks] : good) {
    FileTime time{7, 9};
    EXPECT_EQ(ConvertListingDate(std::wstring_view(text), time), DateFailure::kNone) << text;
    EXPECT_EQ((std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime, ticks) << text;
  }
  for (const wchar_t* text : bad) {
    FileTime time{7, 9};
    EXPECT_NE(ConvertListingDate(std::wstring_view(text), time), DateFailure::kNone) << text;
    EXPECT_EQ(time.dwLowDateTime, 7u) << text;  // left as it was
    EXPECT_EQ(time.dwHighDateTime, 9u) << text;
  }
}

TEST(ListingLoad, FormRulesAndNodes) {
  struct Case {
    const char* name;
    std::wstring text;
    std::wstring machine;
    std::vector<std::wstring> entries;
    std::vector<std::wstring> nodes;  // first-level names in chain order
  };
  const Case cases[] = {
      {"marked form drops flag 1 only",
       L"C:\\a.txt/1/10/01-31-2011 13:05:09/1/U\r\nC:\\b.txt/1/10/01-31-2011 13:05:09/0/U\r\n", L"",
       {L"C:\\a.txt/1/10/01-31-2011 13:05:09/U", L"C:\\b.txt/1/10/01-31-2011 13:05:09/0/U"},
       {L"C:\\"}},
      {"unmarked keeps a trailing /1/U",
       L"C:\\a.txt/1/10/01-31-2011 13:05:09/U\r\nC:\\b/1/10/01-31-2011 13:05:09/1/U\r\n", L"",
       {L"C:\\a.txt/1/10/01-31-2011 13:05:09/U", L"C:\\b/1/10/01-31-2011 13:05:09/1/U"},
       {L"C:\\"}},
      {"short line ends the list",
       L"C:\\a/1/1/01-01-2011 00:00:00/U\r\n  ab \r\nC:\\b/1/1/01-01-2011 00:00:00/U\r\n", L"",
       {L"C:\\a/1/1/01-01-2011 00:00:00/U"}, {L"C:\\"}},
      {"blank line ends the list", L"C:\\a/1/1/x/U\n\nD:\\b/1/1/x/U\n", L"",
       {L"C:\\a/1/1/x/U"}, {L"C:\\"}},
      {"drives become nodes upper-cased; a return makes a second node",
       L"c:\\a/1/1/x/U\nd:\\b/1/1/x/U\nC:\\c/1/1/x/U\n", L"",
       {L"c:\\a/1/1/x/U", L"d:\\b/1/1/x/U", L"C:\\c/1/1/x/U"}, {L"C:\\", L"D:\\", L"C:\\"}},
      {"a line without backslash stays in the previous node",
       L"C:\\a/1/1/x/U\nnoslash/1/1/x/U\n", L"", {L"C:\\a/1/1/x/U", L"noslash/1/1/x/U"}, {L"C:\\"}},
      {"machine prefix", L"C:\\a/1/1/x/U\r\n", L"PC1", {L"PC1\\C:\\a/1/1/x/U"}, {L"PC1"}},
      {"CR alone ends lines", L"C:\\a/1/1/x/U\rC:\\b/1/1/x/U", L"",
       {L"C:\\a/1/1/x/U", L"C:\\b/1/1/x/U"}, {L"C:\\"}},
      {"CR last ends the last line", L"C:\\a/1/1/x/U\r\nC:\\b/1/1/x/U\r", L"",
       {L"C:\\a/1/1/x/U", L"C:\\b/1/1/x/U"}, {L"C:\\"}},
      {"an empty line ends the list", L"C:\\a/1/1/x/U\r\n\r\nC:\\b/1/1/x/U\r\n", L"",
       {L"C:\\a/1/1/x/U"}, {L"C:\\"}},
  };
  // Mapped or read in pieces, a file gives the same lines.
  for (const FileRead read : {FileRead::kMapped, FileRead::kPieces}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(read == FileRead::kMapped ? "mapped" : "pieces");
      auto loaded = Load(c.text, c.machine, read);
      std::vector<std::wstring> entries;
      for (int i = 1; i <= loaded->listing.count(); ++i) entries.push_back(loaded->listing.Entry(i));
      EXPECT_EQ(entries, c.entries) << c.name;
      std::vector<std::wstring> nodes;
      for (auto* n = loaded->listing.root().first_child_; n; n = n->next_sibling_) nodes.push_back(n->name_);
      EXPECT_EQ(nodes, c.nodes) << c.name;
      EXPECT_EQ(loaded->listing.root().child_count_, static_cast<int>(c.nodes.size())) << c.name;
    }
  }
}

TEST(ListingLoad, LineEndsSplitAcrossReadPiecesStayOneEndAndMessagesRunMeanwhile) {
  // Each start shift puts some CR of a CRLF on every unit offset modulo the
  // line length, so whatever size the file is read in, one CRLF is cut in two.
  const std::wstring body = L"C:\\d\\file.txt/1/2/x/U";
  const std::size_t line_units = body.size() + 2;
  const int lines = 3 * static_cast<int>(RemoteListing::kLinesPerMessagePump) + 10;
  for (std::size_t shift = 0; shift < 2 * line_units; ++shift) {
    SCOPED_TRACE(shift);
    const FileRead read = shift < line_units ? FileRead::kPieces : FileRead::kMapped;
    testing::RecordingUi ui;
    platform::ScopedServices seams({.ui = &ui, .module_folder = {}});
    std::wstring text = L"C:\\" + std::wstring(shift % line_units + 3, L'p') + L"/1/2/x/U\r\n";
    for (int i = 1; i < lines; ++i) text += body + L"\r\n";
    auto loaded = Load(text, L"", read);
    ASSERT_EQ(loaded->listing.count(), lines);
    EXPECT_EQ(loaded->listing.Entry(lines), body);
    EXPECT_GE(ui.pumps(), 3);
  }
}

struct Found {
  std::int32_t position;
  std::wstring name;
  std::int64_t size;
  std::int16_t version;
  std::uint32_t low, high;
  std::wstring mode;
  bool operator==(const Found&) const = default;
};

void PrintTo(const Found& f, std::ostream* out) {
  *out << "{" << f.position << " name size " << f.name.size() << " size " << f.size << " version " << f.version
       << " time " << f.high << ":" << f.low << " mode size " << f.mode.size() << "}";
}

Found Of(std::int32_t p, const FindData& data) {
  return {p, data.cFilename, data.nFileSize, data.nVersion, data.ftLastWriteTime.dwLowDateTime,
          data.ftLastWriteTime.dwHighDateTime, data.strUnimode};
}

std::vector<Found> Walk(const RemoteListing& listing, const std::wstring& folder) {
  std::vector<Found> out;
  EnumCursor cursor;
  FindData data;
  for (std::int32_t p = listing.FindFirst(folder, cursor, data); p != -1;
       p = listing.FindNext(cursor, data)) {
    out.push_back(Of(p, data));
  }
  EXPECT_EQ(data.nFileSize, -1);
  EXPECT_EQ(data.ftCreationTime.dwHighDateTime, 0xFFFFFFFFu);
  return out;
}

std::vector<Found> Walk(LinearScanListing& scan, const std::wstring& folder) {
  std::vector<Found> out;
  FindData data;
  for (std::int32_t p = scan.FindFirst(folder, data); p != -1; p = scan.FindNext(data)) {
    out.push_back(Of(p, data));
  }
  return out;
}

// Names, modes and the two numbers as written; versions are clamped to a short.
TEST(ListingFind, NamesModesAndNumbersSurviveTheRoundTrip) {
  const struct Row {
    std::wstring name;
    const wchar_t *version, *size;
    std::int16_t want_version;
    std::int64_t want_size;
  } rows[] = {
      {L"plain_ascii_name_longer_than_sixteen.txt", L"7", L"1234567890", 7, 1234567890},
      {L"ÄÖÜäöü.txt", L"70000", L"-5", 32767, -5},
      {L"Фотографии_2024", L"-40000", L" 12", -32768, 12},
      {L"ab€cd", L"+3", L"12abc", 3, 12},
      {L"x\U0001D11Ey", L"", L"", 0, 0},
      // The longest plain size form, then one digit more.
      {L"lone\xD800surrogate", L"1", L"123456789012345678", 1, 123456789012345678},
      {L"é", L"1", L"1234567890123456789", 1, 1234567890123456789},
      {L"aé", L"1", L"2", 1, 2},
      {L"1234567.é.1234567", L"1", L"2", 1, 2},
  };
  const auto line = [](const Row& row) {
    return L"C:\\D\\" + row.name + L"/" + row.version + L"/" + row.size +
           L"/01-31-2011 13:05:09/Möde";
  };
  std::wstring text;
  for (const Row& row : rows) text += line(row) + L"\r\n";
  auto loaded = Load(text);
  const std::vector<Found> found = Walk(loaded->listing, L"C:\\D\\");
  ASSERT_EQ(found.size(), std::size(rows));
  for (std::size_t i = 0; i < found.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(found[i].name, rows[i].name);
    EXPECT_EQ(found[i].mode, L"Möde");
    EXPECT_EQ(loaded->listing.Entry(found[i].position), line(rows[i]));
    EXPECT_EQ(found[i].version, rows[i].want_version);
    EXPECT_EQ(found[i].size, rows[i].want_size);
  }
}

TEST(CaseFold, LettersAsTheSystemLowerCasesThem) {
  struct Case {
    char32_t letter, lower, upper;
  };
  const Case cases[] = {
      {U'Q', U'q', U'Q'},           {0xC4, 0xE4, 0xC4},       {0xFF, 0xFF, 0x178},  // ÿ, whose capital is Ÿ
      {0x178, 0xFF, 0x178},         {0x17D, 0x17E, 0x17D},    {0x1A0, 0x1A1, 0x1A0},  // Ơ
      {0x1AF, 0x1B0, 0x1AF},        {0x18F, 0x259, 0x18F},    {0x259, 0x259, 0x18F},  // Ə, ə
      {0x1C5, 0x1C6, 0x1C4},        {0x1C6, 0x1C6, 0x1C4},    {0x218, 0x219, 0x218},  // ǅ, ǆ, Ș
      {0x1E00, 0x1E01, 0x1E00},     {0x1EC6, 0x1EC7, 0x1EC6}, {0x1EC7, 0x1EC7, 0x1EC6},  // Ệ, ệ
      {0x1EF8, 0x1EF9, 0x1EF8},     {0x3A3, 0x3C3, 0x3A3},    {0x42F, 0x44F, 0x42F},
      // Lower cases of another UTF-8 length stay as they are, and so do letters without a pair.
      {0x23A, 0x23A, 0x23A},        {0x1E9E, 0x1E9E, 0x1E9E}, {0xDF, 0xDF, 0xDF},
      {0x130, 0x130, 0x130},        {0x1E96, 0x1E96, 0x1E96}, {0x2C65, 0x2C65, 0x2C65},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(FoldCase(c.letter), c.lower) << std::hex << static_cast<unsigned>(c.letter);
    EXPECT_EQ(UpperCase(c.letter), c.upper) << std::hex << static_cast<unsigned>(c.letter);
  }
}

// The plain scan's fold is the reference the index is compared with, so the
// two must agree on every code, and on ASCII both must be the C library's.
TEST(CaseFold, EveryCodeFoldsAsThePlainScanAndAsciiAsTheCLibrary) {
  for (char32_t c = 0; c < 0x80; ++c) {
    EXPECT_EQ(FoldCase(c), static_cast<char32_t>(std::tolower(static_cast<int>(c)))) << static_cast<unsigned>(c);
    EXPECT_EQ(UpperCase(c), static_cast<char32_t>(std::toupper(static_cast<int>(c)))) << static_cast<unsigned>(c);
  }
  int differences = 0;
  for (char32_t c = 0; c < 0x2100 && differences < 10; ++c) {
    if (FoldCase(c) == PlainFoldCase(c)) continue;
    ++differences;
    ADD_FAILURE() << std::hex << static_cast<unsigned>(c) << " folds to " << static_cast<unsigned>(FoldCase(c))
                  << ", the plain scan to " << static_cast<unsigned>(PlainFoldCase(c));
  }
  for (char32_t c : {0x10400u, 0x1F600u, 0xFF21u}) EXPECT_EQ(FoldCase(c), c);
}

TEST(ListingFind, AnswersOfTheRun) {
  const std::wstring text =
      L"C:\\Docs\\a.txt/2/100/01-31-2011 13:05:09/U\r\n"
      L"C:\\Docs\\sub\\b.txt/1/5/01-31-2011 13:05:09/X\r\n"   // folder only through its child
      L"C:\\Other\\c.txt/1/7/01-31-2011 13:05:09/A\r\n"
      L"C:\\VIỆT NAM\\Ảnh.jpg/1/2/01-31-2011 13:05:09/U\r\n"
      L"C:\\Ơn\\ǅ.txt/1/2/01-31-2011 13:05:09/U\r\n"
      L"D:\\Docs\\d.txt/1/7/01-31-2011 13:05:09/U\r\n";
  auto loaded = Load(text);
  const RemoteListing& listing = loaded->listing;
  const std::uint32_t low = kJan31 & 0xFFFFFFFFu, high = kJan31 >> 32;
  // The ordinary modes U and A are given as no mode.
  EXPECT_EQ(Walk(listing, L"c:\\docs\\"), (std::vector<Found>{{1, L"a.txt", 100, 2, low, high, L""},
                                                           {2, L"sub\\b.txt", 5, 1, low, high, L"X"}}));
  EXPECT_EQ(Walk(listing, L"C:\\Docs\\sub\\").size(), 1u);
  EXPECT_TRUE(Walk(listing, L"E:\\").empty());          // no such node
  EXPECT_TRUE(Walk(listing, L"C:\\Nothing\\").empty());  // node, no line
  EXPECT_EQ(Walk(listing, L"D:\\").size(), 1u);          // D: lines stay out of C:
  // Folders are found whatever the case of the question, Vietnamese and ǅ too.
  EXPECT_EQ(Walk(listing, L"c:\\việt nam\\").size(), 1u);
  EXPECT_EQ(Walk(listing, L"C:\\ơN\\ǆ").size(), 1u);
  // A second find-first restarts.
  EnumCursor cursor;
  FindData data;
  EXPECT_EQ(listing.FindFirst(L"C:\\Docs\\", cursor, data), 1);
  EXPECT_EQ(listing.FindFirst(L"C:\\Docs\\", cursor, data), 1);
}

// Listings with the odd features the engine or a damaged file may produce.
std::wstring OddListing(std::mt19937& rng, std::vector<std::wstring>& folders) {
  const std::vector<std::wstring> names = {L"Docs", L"docs", L"Sub", L"ÄRGER", L"ärger", L"Фото",
                                           L"фото", L"a b", L"x.y", L"C:", L"c:", L"1", L"Ω",
                                           L"Việt Nam", L"VIỆT NAM", L"Ơn", L"ơn", L"ǅemal"};
  const std::vector<std::wstring> drives = {L"C:\\", L"c:\\", L"D:\\"};
  std::uniform_int_distribution<int> pick(0, 99);
  std::wstring text;
  std::wstring previous;
  const int lines = 20 + pick(rng);
  for (int i = 0; i < lines; ++i) {
    std::wstring path = drives[static_cast<std::size_t>(pick(rng) % (pick(rng) < 90 ? 1 : 3))];
    const int depth = pick(rng) % 5;
    for (int d = 0; d < depth; ++d) {
      path += names[static_cast<std::size_t>(pick(rng)) % names.size()];
      path += L"\\";
      folders.push_back(path);
      if (pick(rng) < 5) path += L"\\";  // doubled backslash
    }
    path += names[static_cast<std::size_t>(pick(rng)) % names.size()] + L".txt";
    std::wstring line;
    const int shape = pick(rng);
    if (shape < 70) line = path + L"/3/42/01-31-2011 13:05:09/U";
    else if (shape < 75) line = path + L"\\/1/1/01-31-2011 13:05:09/U";  // trailing backslash
    else if (shape < 78) line = path + L"/1";                            // missing fields
    else if (shape < 80) line = path;                                    // no field at all
    else if (shape < 83) line = L"noslash" + std::to_wstring(i) + L"/1/1/bad date/Z";
    else if (shape < 88) line = previous.empty() ? path + L"/1/1/x/U" : previous;  // duplicate
    else if (shape < 92) line = path + L"/2/9/02-30-2011 10:00:00/U";   // invalid date
    else if (shape < 96) line = path + L"/2/9/01-31-2011 13:05:09/c:\\x\\";  // key again in mode
    else line = path + L"/9/9/01-31-2011 13:05:09/Mode";
    previous = line;
    text += line + (pick(rng) < 50 ? L"\r\n" : L"\n");
  }
  return text;
}

// Lines are kept in pieces (folder, name, packed fields); each comes back as
// it was loaded, whatever its shape.
TEST(ListingLoad, EveryLineComesBackAsLoaded) {
  const std::wstring shapes[] = {
      L"C:\\D\\a.txt/1/10/01-01-1970 00:00:00/U",    // first second that packs
      L"C:\\D\\b.txt/1/10/12-31-1969 23:59:59/U",    // the one before
      L"C:\\D\\c.txt/65535/549755813887/02-07-2106 06:28:15/A",  // the largest that pack
      L"C:\\D\\d.txt/65536/549755813888/02-07-2106 06:28:16/A",  // one more each
      L"C:\\D\\e.txt/01/010/01-31-2011 13:05:09/U",  // leading zeros
      L"C:\\D\\f.txt/0/0/02-29-2000 12:00:00/0/U",  // a flag field kept
      L"C:\\D\\g.txt/0/0/02-29-2000 12:00:00/2/U",
      L"C:\\D\\h.txt/1/2/1-31-2011 13:5:9/U",
      L"C:\\D\\i.txt/1/2/01-31-2011 13:05:09/",      // empty mode
      L"C:\\D\\j.txt/1/2/01-31-2011 13:05:09/U/",
      L"C:\\D\\k.txt/+1/ 2/01-31-2011 13:05:09/U",
      L"C:\\D\\l.txt/1/2/01-31-2011 13:05:09",
      L"C:\\D\\m.txt", L"C:\\D\\", L"C:\\\\D\\n.txt/1/1/x/U", L"noslash/1/1/x/U",
      L"C:\\d\\o.txt/1/2/01-31-2011 13:05:09/Möde",  // the folder in another case
      L"C:\\Фото\\ÿ\xD800.txt/1/2/01-31-2011 13:05:09/Ω",
  };
  std::wstring text;
  for (const std::wstring& line : shapes) text += line + L"\r\n";
  // More distinct modes than the table holds.
  for (int k = 0; k < 300; ++k) text += L"C:\\E\\" + std::to_wstring(k) + L"/1/2/01-31-2011 13:05:09/M" + std::to_wstring(k) + L"\r\n";
  auto loaded = Load(text);
  ASSERT_EQ(loaded->listing.count(), static_cast<std::int32_t>(std::size(shapes)) + 300);
  for (std::size_t i = 0; i < std::size(shapes); ++i)
    EXPECT_EQ(loaded->listing.Entry(static_cast<std::int32_t>(i) + 1), shapes[i]) << i;
  const std::vector<Found> found = Walk(loaded->listing, L"C:\\E\\");
  ASSERT_EQ(found.size(), 300u);
  EXPECT_EQ(found[299].mode, L"M299");
  EXPECT_EQ(found[299].name, L"299");

  // Dates across the packed range, each as the plain scan reads it; names in
  // every ASCII letter, asked for in both cases.
  std::mt19937 dates(99);
  std::wstring more;
  for (int k = 0; k < 400; ++k) {
    const unsigned year = 1965 + dates() % 150, month = 1 + dates() % 12, day = 1 + dates() % 28;
    const unsigned seconds = dates() % 86400;
    wchar_t date[32];
    std::swprintf(date, 32, L"%02u-%02u-%04u %02u:%02u:%02u", month, k % 50 == 0 && month == 2 ? 29 : day, year,
                  seconds / 3600, seconds / 60 % 60, seconds % 60);
    const wchar_t letter = static_cast<wchar_t>(L'A' + k % 26);
    more += L"C:\\" + std::wstring(1, letter) + L"one\\f" + std::to_wstring(k) + L"/1/" + std::to_wstring(k) +
            L"/" + date + L"/U\r\n";
  }
  auto dated = Load(more);
  LinearScanListing plain_dated = PlainLoad(*dated);
  for (std::int32_t i = 1; i <= dated->listing.count(); ++i)
    ASSERT_EQ(dated->listing.Entry(i), plain_dated.entry(static_cast<std::size_t>(i))) << i;
  for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
    for (const std::wstring& folder : {L"c:\\" + std::wstring(1, letter) + L"ONE\\",
                                       L"C:\\" + std::wstring(1, static_cast<wchar_t>(letter + 32)) + L"one\\"}) {
      const std::vector<Found> indexed = Walk(dated->listing, folder);
      EXPECT_FALSE(indexed.empty()) << static_cast<char>(letter);
      EXPECT_EQ(indexed, Walk(plain_dated, folder)) << static_cast<char>(letter);
    }
  }
}

// Which lines the index must check as text is decided per folder; these
// listings put the first-level key where that shortcut does not hold.
TEST(ListingFind, KeysInOddPlacesAnswerAsThePlainScan) {
  const struct Case {
    const char* what;
    std::wstring text;
    std::wstring machine;
    std::vector<std::wstring> queries;
  } cases[] = {
      {"key with a slash", L"x/1/2/01-31-2011 13:05:09/c:\\y\r\nx/1/2/01-31-2011 13:05:09/c:\\z\r\n"
                           L"x/1/2/01-31-2011 13:05:09/c:\\y\\x/1/2/01-31-2011 13:05:09/c:\\\r\n",
       L"", {L"x/1/2/01-31-2011 13:05:09/c:\\", L"X/1/2/01-31-2011 13:05:09/C:\\y", L"x/1/", L"c:\\"}},
      {"key again in a packed mode", L"C:\\a\\b/1/2/01-31-2011 13:05:09/U\r\nC:\\a\\c/1/2/01-31-2011 13:05:09/c:\\a\\\r\n"
                                     L"C:\\a\\d/1/2/01-31-2011 13:05:09/U\r\n",
       L"", {L"c:\\a\\", L"C:\\A\\c", L"c:\\", L"c:\\a\\b"}},
      {"key again in fields kept as text", L"C:\\a\\b/01/2/x/c:\\a\\q\r\nC:\\a\\c/1/2/01-31-2011 13:05:09/U\r\n",
       L"", {L"c:\\a\\", L"c:\\a\\q", L"c:\\"}},
      {"key again inside the folder part", L"C:\\a\\c:\\b/1/2/01-31-2011 13:05:09/U\r\nC:\\x\\b/1/2/01-31-2011 13:05:09/U\r\n",
       L"", {L"c:\\", L"c:\\b", L"C:\\A\\", L"c:\\c:\\", L"c:\\a\\c:\\"}},
      {"line without a folder", L"C:\\a/1/2/01-31-2011 13:05:09/U\r\nc/1/2/01-31-2011 13:05:09/x\\c:\\\r\n",
       L"", {L"c:\\", L"C:\\a", L"c"}},
      {"several computers", L"C:\\a\\b/1/2/01-31-2011 13:05:09/pc\\c\r\nC:\\pc\\c/1/2/01-31-2011 13:05:09/U\r\n",
       L"PC", {L"pc\\c:\\", L"PC\\C:\\A\\", L"pc\\c", L"pc", L"pc\\"}},
  };
  for (const Case& c : cases) {
    auto loaded = Load(c.text, c.machine);
    LinearScanListing plain = PlainLoad(*loaded, c.machine);
    int answered = 0;
    for (const std::wstring& query : c.queries) {
      const std::vector<Found> expected = Walk(plain, query);
      answered += !expected.empty();
      EXPECT_EQ(Walk(loaded->listing, query), expected) << c.what << " " << query.size();
    }
    EXPECT_GE(answered, 2) << c.what;
  }
}

// The odd listings load every line as the plain load does, and the index
// answers every query as a scan of the same load.
TEST(ListingFind, IndexAnswersAsThePlainScan) {
  std::mt19937 rng(12345);
  for (int round = 0; round < 60; ++round) {
    std::vector<std::wstring> folders;
    const std::wstring text = OddListing(rng, folders);
    const std::wstring machine = round % 4 == 3 ? L"PC" + std::to_wstring(round) : L"";
    auto loaded = Load(text, machine);
    LinearScanListing scan = LinearScanListing::From(loaded->listing);
    LinearScanListing plain = PlainLoad(*loaded, machine);
    ASSERT_EQ(plain.size(), static_cast<std::size_t>(loaded->listing.count())) << round;
    for (std::size_t i = 1; i <= plain.size(); ++i)
      ASSERT_EQ(loaded->listing.Entry(static_cast<std::int32_t>(i)), plain.entry(i)) << round << " " << i;

    std::vector<std::wstring> queries = {L"", L"C:\\", L"c:", L"D:\\", L"C:\\docs", L"c:\\Docs\\",
                                         L"C:\\ärger\\", L"c:\\ФОТО\\", L"c:\\x", L"c:\\d",
                                         L"C:\\Docs\\sub\\", L"c:\\c:\\", L"c:\\\\", L"C:\\1/",
                                         L"noslash", L"c:\\a b\\"};
    for (const std::wstring& folder : folders) {
      queries.push_back(folder);
      queries.push_back(UpperCaseText(folder));
      queries.push_back(folder.substr(0, folder.size() - 1));
      queries.push_back(folder.substr(0, folder.size() / 2 + 1));
    }
    if (!machine.empty()) {
      const std::size_t plain = queries.size();
      for (std::size_t i = 0; i < plain; ++i) queries.push_back(machine + L"\\" + queries[i]);
      queries.insert(queries.end(), {machine, L"pc"});
    }
    for (const std::wstring& q : queries) {
      ASSERT_EQ(Walk(loaded->listing, q), Walk(scan, q)) << "round " << round << " query " << q.size();
    }
  }
}

}  // namespace
}  // namespace tavrine::browsing
