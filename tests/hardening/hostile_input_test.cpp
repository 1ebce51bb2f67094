// Outside input at its worst: huge numbers and lines, NULs, broken UTF-16,
// names that try to leave the work root, a work root that cannot hold
// folders, files that cannot be written; and a whole session's files and
// messages searched for its secrets.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "browsing/browsing_state.h"
#include "browsing/file_history.h"
#include "browsing/remote_tree.h"
#include "dialogs/login_flow.h"
#include "fake_views.h"
#include "foundation/text_file.h"
#include "contract/cls_api_interface.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "session_fixture.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

using Hostile = SessionTest;

// The highest version number sizes the version array: a huge or negative one
// must be skipped, not allocated.
TEST_F(Hostile, VersionNumbersOutOfReachAreSkippedNotAllocated) {
  struct Row {
    const char* what;
    std::string text;
    std::vector<std::int16_t> shown;  // newest first
  } rows[] = {
      {"two billion", "2000000000/01-31-2011 13:05:09/01-30-2011 10:00:00/1|2/01-31-2011 13:05:09/x/5|", {2}},
      {"past 64 bits", "99999999999999999999999/a/b/1|1/a/b/2|", {1}},
      {"negative", "-5/a/b/1|3/a/b/2|", {3}},
      {"a megabyte record", "1/" + std::string(1 << 20, '7') + "/b/1|", {1}},
      {"NUL in a record", std::string("1/01-31-2011\0 13:05:09/x/1|", 27), {1}},
  };
  std::wstring folder = CallerFolder(L"versions");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    WriteFileBytes(platform::ToFsPath(folder) / "BackupVersion.txt", row.text);
    browsing::VersionHistory history;
    history.Restart();
    history.set_folder(folder);
    ASSERT_EQ(history.ReadVersionFile(), 1);
    EXPECT_LE(browsing::CurrentBrowsingState().versions.size(), 100001u);
    history.set_folder(L"");
    std::vector<std::int16_t> shown;
    browsing::FileVersions version;
    while (history.Next(version) != -1 && shown.size() < 40) shown.push_back(version.nVersion);
    EXPECT_EQ(shown, row.shown);
  }
}

// Backupfile.txt and the other UTF-16 files: the BOM is optional, an odd last
// byte is dropped, a NUL is a character like any other.
TEST_F(Hostile, BrokenUtf16ListingsStillLoad) {
  const std::wstring line = L"C:\\D\\a.txt/1/2/01-31-2011 13:05:09/U\r\n";
  struct Row {
    const char* what;
    std::string bytes;
    std::int32_t entries;
  } rows[] = {
      {"no BOM", Utf16LeFile(line + line).substr(2), 2},
      {"odd byte count", Utf16LeFile(line + line) + "C", 2},
      {"NUL in a name", Utf16LeFile(L"C:\\D\\a" + std::wstring(1, L'\0') + L"b/1/2/x/U\r\n"), 1},
      {"a megabyte line", Utf16LeFile(L"C:\\" + std::wstring(1 << 20, L'n') + L"/1/2/x/U\r\n" + line), 2},
      {"only a BOM", "\xFF\xFE", 0},
      {"one byte", "\xFF", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    fs::path file = install_.path() / "listing" / "Backupfile.txt";
    WriteFileBytes(file, row.bytes);
    browsing::RemoteListing listing;
    ASSERT_TRUE(listing.AddFile(platform::FromFsPath(file), L""));
    listing.Finish();
    EXPECT_EQ(listing.count(), row.entries);
  }
}

// Everything below the temp folder that the library may touch.
std::vector<fs::path> FilesOutside(const fs::path& root, const fs::path& inside) {
  std::vector<fs::path> found;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    auto relative = fs::relative(entry.path(), inside);
    if (!relative.empty() && *relative.begin() == "..") found.push_back(entry.path());
  }
  return found;
}

TEST_F(Hostile, AStoredCurrentUserThatLeavesTheWorkRootIsRefused) {
  auto store = profile::ProfileStore::ForCurrentInstallation();
  for (const wchar_t* user : {L"..", L"..\\..\\escape", L"../escape", L"a/../../escape"}) {
    SCOPED_TRACE(platform::WideToUtf8(user));
    ASSERT_TRUE(store.registry().WriteString(store.root_key(), profile::kCurrentUserValue, user));
    install_.Restart(EngineScenario().On(114).Output(402).WithFile("Quota.txt", "1\r\n2\r\n"));
    double max_size = 0, used = 0;
    contract::clsAPI_Interface().API_GetQuota(max_size, used);
    EXPECT_EQ(FilesOutside(install_.path().parent_path(), install_.path()), std::vector<fs::path>{});
    EXPECT_FALSE(fs::exists(install_.path().parent_path() / "escape"));
  }
}

// A work root that cannot hold folders (a file where the folder should be;
// the tests run as root on CI, so a mode-0555 folder would not stop them):
// nothing is started, nothing is written beside the program or into the
// current folder, and each call gives its no-result value.
TEST_F(Hostile, AWorkRootThatCannotHoldFoldersStartsNothing) {
  fs::path blocker = install_.path() / "not a folder";
  WriteFileBytes(blocker, "x");
  install_.WriteFile(L"UserName.ini",
                     "[Registry]\r\nVirtualPath=" + platform::WideToUtf8(platform::FromFsPath(blocker / "")) + "\r\n");
  install_.Restart(EngineScenario().On(114).Output(402).On(116).Output(402).On(5).Output(404).On(113).Output(402).On(6).Output(402));
  fs::path cwd = fs::current_path();
  bool request_in_cwd_before = fs::exists(cwd / "DLLInput.txt");

  double max_size = 5, used = 5;
  contract::clsAPI_Interface api;
  EXPECT_EQ(api.API_GetQuota(max_size, used), -1);
  EXPECT_EQ(api.API_AutoReconnect(), -1);
  EXPECT_EQ(api.API_UPDATE_RAND_NUM(), -1);
  std::wstring folder;
  EXPECT_EQ(api.API_GETVERSIONS(L"C:\\a.txt", folder), -1);
  EXPECT_EQ(api.API_DELETE_REMOTE_FILE(DeleteList()), -1);
  EXPECT_TRUE(install_.Journal().empty());
  EXPECT_EQ(fs::exists(cwd / "DLLInput.txt"), request_in_cwd_before);
  EXPECT_FALSE(fs::exists(install_.path() / "DLLInput.txt"));
}

// A folder that holds the file's name (as a lock by another program would) or
// a full disk: the write reports failure, and nothing throws.
TEST_F(Hostile, WritesThatCannotHappenReportFailure) {
  const std::wstring held = CallerFolder(L"DLLInput.txt");
  EXPECT_FALSE(foundation::WriteUtf16Lines(held, {L"line"}));
  EXPECT_FALSE(foundation::AppendAnsiLine(held, L"line"));
  if (!fs::exists("/dev/full")) return;  // no cheap full file system here
  EXPECT_FALSE(foundation::WriteUtf16Lines(L"/dev/full", {L"line"}));
  EXPECT_FALSE(foundation::AppendAnsiLine(L"/dev/full", L"line"));
}

// A whole session against the reference engine with a distinctive password
// and encryption key: neither may appear in plain text in any file the run
// leaves (trace log, journal, exchange folders, profile store) nor in a
// message shown. The request files carry them shifted, which is expected.
const std::wstring kPassword = L"Qv9#Pässwort-7781";
const std::wstring kKey = L"Kx4$Schlüssel-5523";

// Every spelling a file could hold the secret in: UTF-8, ANSI, UTF-16LE, and
// the journal's hex of those bytes.
std::vector<std::string> Spellings(const std::wstring& secret) {
  std::vector<std::string> forms = {platform::WideToUtf8(secret), platform::WideToAnsi(secret),
                                    Utf16LeFile(secret).substr(2)};
  forms.push_back(Hex(forms[0]));
  forms.push_back(Hex(forms[2]));
  return forms;
}

using Secrets = SessionTest;

TEST_F(Secrets, NoFileOrMessageOfAWholeSessionHoldsThePasswordOrKey) {
  EngineScenario story;
  story.On(110).Output(901)
      .On(116).Output(402).WithFile("DLLOutput1.txt", "127.0.0.1\r\n443\r\n")
      .On(111).Output(403)
      .On(115).Info(-12009, "Server is busy").Then().Output(0)
      .On(114).Output(402).WithFile("Quota.txt", "10\r\n20\r\n")
      .On(6).Info(-403, "password changed")
      .On(113).Info(-422);
  install_.Restart(story);

  FakeLoginView view;
  view.user_name = L"alice";
  view.password = kPassword;
  dialogs::LoginProcedure login(view, L"");
  login.OnLogin();
  profile::UpdateUserProfile(L"encpasswordnew", kKey);

  contract::clsAPI_Interface api;
  api.API_AutoReconnect();
  api.API_REMOTE(CallerFolder(L"list"));
  double max_size = 0, used = 0;
  api.API_GetQuota(max_size, used);
  api.API_DELETE_REMOTE_FILE(DeleteList());
  std::wstring folder;
  api.API_GETVERSIONS(L"C:\\a.txt", folder);
  ASSERT_GE(install_.Journal().size(), 6u) << "the story did not reach the engine";
  ASSERT_EQ(profile::GetUserProfile(L"password"), kPassword) << "the login did not store the password";

  std::size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(install_.path())) {
    if (!entry.is_regular_file() || entry.path().extension() == ".exe") continue;
    ++files;
    const std::string bytes = ReadFileBytes(entry.path());
    for (const std::wstring& secret : {kPassword, kKey}) {
      for (const std::string& form : Spellings(secret)) {
        EXPECT_EQ(bytes.find(form), std::string::npos)
            << entry.path() << " holds " << platform::WideToUtf8(secret);
      }
    }
  }
  EXPECT_GT(files, 3u);
  for (const auto& box : ui_.boxes()) {
    EXPECT_EQ(box.text.find(kPassword), std::wstring::npos);
    EXPECT_EQ(box.text.find(kKey), std::wstring::npos);
  }
}

}  // namespace
}  // namespace tavrine::testing
