#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cwctype>

#include "backup/compare_harness.h"
#include "platform/path.h"
#include "platform/process.h"
#include "support/temp_folder.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// The listing's date of the files below, and the same instant as a file time.
constexpr char kListedDate[] = "01-31-2011 13:05:09";
const auto kListedTime = std::chrono::sys_days{std::chrono::year{2011} / 1 / 31} + 13h + 5min + 9s;

// The real compare, run as a process on a folder of its own.
class CompareProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    InstallCompareProgram(home_.path());
    fs::create_directories(Exchange());
    fs::create_directories(Local());
  }
  fs::path Exchange() const { return home_.path() / "exchange"; }
  fs::path Local() const { return home_.path() / "local data"; }
  std::wstring Text(const fs::path& p) const { return platform::FromFsPath(p); }
  void MakeFile(const fs::path& p, const std::string& bytes) const {
    WriteFileBytes(p, bytes);
    fs::last_write_time(p, std::chrono::file_clock::from_sys(kListedTime));
  }
  int Run(const std::wstring& parameters) const {
    auto process = platform::SystemProcessLauncher().Start(
        Text(home_.path() / "TavrinECompareList.exe"), parameters, Text(home_.path()));
    if (!process || process->Wait(20000) != platform::WaitOutcome::kExited) return -100;
    return 0;
  }
  int Compare(const std::wstring& request, const std::wstring& listing) const {
    WriteFileBytes(Exchange() / "DLLInput.txt", Utf16LeFile(request));
    WriteFileBytes(Exchange() / "Backupfile.txt", Utf16LeFile(listing));
    return Run(L"<" + Text(Exchange()) + L"><1>");
  }
  std::string Result() const { return ReadFileBytes(Exchange() / "DLLOutput1.txt"); }

  TempFolder home_;
};

TEST_F(CompareProgram, NewAndChangedFilesAreToBeBackedUp) {
  struct Case {
    const char* name;
    std::wstring listed_size;  // "": not in the listing
    std::wstring listed_date;
    bool upper_case;           // listed path in capitals
    bool to_backup;
  };
  const std::wstring date(kListedDate, kListedDate + sizeof kListedDate - 1);
  const Case cases[] = {
      {"unchanged", L"5", date, false, false},
      {"unchanged, other case", L"5", date, true, false},
      {"new", L"", date, false, true},
      {"other size", L"6", date, false, true},
      {"other time", L"5", L"01-31-2011 13:05:10", false, true},
  };
  fs::path file = Local() / "a.txt";
  MakeFile(file, "hello");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::wstring path = RemoteForm(file);
    if (c.upper_case) std::transform(path.begin(), path.end(), path.begin(), ::towupper);
    std::wstring listing =
        c.listed_size.empty() ? L"" : path + L"/2/" + c.listed_size + L"/" + c.listed_date + L"/U\r\n";
    ASSERT_EQ(Compare(Text(file) + L"\r\n0\r\n", listing), 0);
    EXPECT_EQ(ReadUtf16File(Exchange() / "ToBackup.txt"),
              c.to_backup ? Text(file) + L"\r\n" : L"");
    EXPECT_EQ(ReadUtf16File(Exchange() / "notToBackup.txt"),
              c.to_backup ? L"" : Text(file) + L"\r\n");
    EXPECT_EQ(Result(), c.to_backup ? "1\r\n" : "0\r\n");
  }
}

TEST_F(CompareProgram, FoldersAreWalkedAndMissingItemsAreNotBackedUp) {
  MakeFile(Local() / "docs" / "kept.txt", "hello");
  MakeFile(Local() / "docs" / "sub" / "new.txt", "x");
  std::wstring listing = RemoteForm(Local() / "docs" / "kept.txt") + L"/1/5/" +
                         std::wstring(kListedDate, kListedDate + 19) + L"/1/U\r\n";
  std::wstring request = Text(Local() / "docs") + L"\r\n1\r\n" + Text(Local() / "gone.txt") +
                         L"\r\n0\r\n" + Text(Local() / "gone dir") + L"\r\n1\r\n";
  ASSERT_EQ(Compare(request, listing), 0);
  EXPECT_EQ(ReadUtf16File(Exchange() / "ToBackup.txt"),
            Text(Local() / "docs" / "sub" / "new.txt") + L"\r\n");
  EXPECT_EQ(ReadUtf16File(Exchange() / "notToBackup.txt"),
            Text(Local() / "docs" / "kept.txt") + L"\r\n" + Text(Local() / "gone.txt") + L"\r\n" +
                Text(Local() / "gone dir") + L"\r\n");
  EXPECT_EQ(Result(), "1\r\n");
}

TEST_F(CompareProgram, BadInputGivesADefinedAnswer) {
  struct Case {
    const char* name;
    std::wstring parameters;
    bool with_request;
    const char* result;  // DLLOutput1.txt; nullptr: not written
    const wchar_t* note;
  };
  const std::wstring folder = Text(Exchange());
  const Case cases[] = {
      {"no request", L"<" + folder + L"><1>", false, "-1\r\n", L""},
      {"no mode", L"<" + folder + L">", true, "0\r\n", L""},
      {"unknown mode", L"<" + folder + L"><2>", true, nullptr, L"mode not understood"},
      {"no brackets", folder, true, nullptr, L"parameters not understood"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove(Exchange() / "DLLOutput1.txt");
    fs::remove(Exchange() / "DLLInput.txt");
    // A request line without its kind is ignored.
    if (c.with_request) WriteFileBytes(Exchange() / "DLLInput.txt", Utf16LeFile(L"C:\\odd.txt\r\n"));
    ASSERT_EQ(Run(c.parameters), 0);
    if (c.result) {
      EXPECT_EQ(Result(), c.result);
    } else {
      EXPECT_FALSE(fs::exists(Exchange() / "DLLOutput1.txt"));
    }
    EXPECT_EQ(ReadCompareJournal(home_.path()).back().note, c.note);
  }
}

}  // namespace
}  // namespace tavrine::testing
