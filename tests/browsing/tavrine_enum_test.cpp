#include "contract/tavrine_enum.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "browsing/browsing_state.h"
#include "engine/engine_run.h"
#include "foundation/shared_state.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/profile_store.h"
#include "session_fixture.h"
#include "support/slice_counting_launcher.h"

namespace tavrine::testing {
namespace {

using browsing::FileVersions;
using browsing::FindData;
using contract::TavrinEenum;

class EnumTest : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    browsing::CurrentBrowsingState() = browsing::BrowsingState{};
  }
  std::filesystem::path UserPath() const { return platform::ToFsPath(UserFolder()); }
};

TEST_F(EnumTest, InitAsksTheEngineAndLoadsTheUsersListing) {
  profile::UpdateUserProfile(L"Count", L"0");
  WriteFileBytes(UserPath() / "Backupfile.txt",
                 Utf16LeFile(L"C:\\Docs\\a.txt/2/100/01-31-2011 13:05:09/U\r\n"
                             L"C:\\Docs\\b.txt/1/5/01-31-2011 13:05:09/U\r\n"));
  // A folder of an earlier run with the name this one would take first.
  WriteFileBytes(UserPath() / "Temp" / "18_05_09_250_1234" / "DLLOutput.txt", "-12\r\n");
  install_.SetScenario(EngineScenario().On(119).Output(402).On(122).Delay(700).Output(402));
  SliceCountingLauncher launcher;
  platform::ScopedServices counting({.launcher = &launcher, .module_folder = {}});
  TavrinEenum e;
  EXPECT_EQ(e.TavrinEInit(), 1);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{119, 122}));
  EXPECT_EQ(install_.Journal()[0].program, L"TavrinEClsClient.exe");
  EXPECT_EQ(install_.Journal()[1].program, L"TavrinEClient.exe");
  EXPECT_EQ(install_.Journal()[1].folder, TempRoot() + platform::kPathSeparator + L"18_05_09_250_1234_1");
  // Messages run and 100 ms pass after every 300 ms slice the listing run was still going.
  ASSERT_EQ(launcher.starts(), 2u);
  EXPECT_GE(launcher.RunningSlices(1), 2);
  EXPECT_EQ(ui_.pumps(), launcher.RunningSlices(1));
  EXPECT_EQ(clock_.CountPauses(100), static_cast<std::size_t>(launcher.RunningSlices(1)));
  std::wstring user;
  e.W_GetCurrentUser(user);
  EXPECT_EQ(user, L"alice");

  FindData data;
  EXPECT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), 1);
  EXPECT_EQ(data.cFilename, L"a.txt");
  EXPECT_EQ(e.TavrinENextFile(data), 2);
  EXPECT_EQ(e.TavrinENextFile(data), -1);
  EXPECT_EQ(data.nVersion, -1);

  // A second object on the thread shares the load; its exit empties it for both.
  TavrinEenum other;
  EXPECT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), 1);
  other.TavrinEExitInstance();
  EXPECT_EQ(e.TavrinENextFile(data), -1);
  EXPECT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), -1);
}

// The machine-list run cannot be started at all; the listing run can.
class LauncherFailingFirst : public platform::ProcessLauncher {
 public:
  std::unique_ptr<platform::RunningProcess> Start(const std::wstring& program,
                                                  const std::wstring& parameters,
                                                  const std::wstring& working_folder) override {
    if (starts_++ == 0) throw std::runtime_error("no process slots");
    return platform::SystemProcessLauncher().Start(program, parameters, working_folder);
  }

 private:
  int starts_ = 0;
};

TEST_F(EnumTest, InitLoadsTheListingWhenTheMachineListQueryFails) {
  WriteFileBytes(UserPath() / "Backupfile.txt",
                 Utf16LeFile(L"C:\\Docs\\a.txt/2/100/01-31-2011 13:05:09/U\r\n"));
  install_.SetScenario(EngineScenario().On(122).Output(402));
  LauncherFailingFirst launcher;
  platform::ScopedServices failing({.launcher = &launcher, .module_folder = {}});
  TavrinEenum e;
  EXPECT_EQ(e.TavrinEInit(), 1);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{122}));
  const std::string trace = TraceText();
  EXPECT_NE(trace.find("[EXCEPTION] GetMultiplePCInfo() : no process slots"), std::string::npos) << trace;
  FindData data;
  EXPECT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), 1);
  EXPECT_EQ(data.cFilename, L"a.txt");
}

TEST_F(EnumTest, NextFileGoesOnOverALoadAnotherObjectMade) {
  const auto write_listing = [&](const std::wstring& text) {
    WriteFileBytes(UserPath() / "Backupfile.txt", Utf16LeFile(text));
  };
  write_listing(L"C:\\Docs\\a.txt/1/1/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\b.txt/1/2/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\c.txt/1/3/01-31-2011 13:05:09/U\r\n");
  TavrinEenum e, other;
  ASSERT_EQ(e.TavrinELocalRefresh(), 1);
  FindData data;
  ASSERT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), 1);
  ASSERT_EQ(e.TavrinENextFile(data), 2);

  // The new load puts another drive first: the C: run now spans 2..5.
  write_listing(L"D:\\x.txt/1/9/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\a.txt/1/1/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\b.txt/1/2/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\new.txt/1/4/01-31-2011 13:05:09/U\r\n"
                L"C:\\Docs\\c.txt/1/3/01-31-2011 13:05:09/U\r\n");
  ASSERT_EQ(other.TavrinELocalRefresh(), 1);
  std::vector<std::pair<std::int32_t, std::wstring>> rest;
  for (std::int32_t p = e.TavrinENextFile(data); p != -1; p = e.TavrinENextFile(data))
    rest.emplace_back(p, data.cFilename);
  EXPECT_EQ(rest, (std::vector<std::pair<std::int32_t, std::wstring>>{
                      {3, L"b.txt"}, {4, L"new.txt"}, {5, L"c.txt"}}));
  EXPECT_EQ(data.nFileSize, -1);

  // A load without the folder's node ends the walk.
  ASSERT_EQ(e.TavrinEFindFirstFile(L"C:\\Docs\\", data), 2);
  write_listing(L"D:\\x.txt/1/9/01-31-2011 13:05:09/U\r\n");
  ASSERT_EQ(other.TavrinELocalRefresh(), 1);
  EXPECT_EQ(e.TavrinENextFile(data), -1);
  EXPECT_EQ(data.nVersion, -1);
}

TEST_F(EnumTest, LocalRefreshReadsSeveralComputersPrefixedAndOnlyPlainNames) {
  // Names that are not plain names (from the service) never become listing folders.
  profile::UpdateUserProfile(L"List", L"PC1|0|1;pc1|0|1;..|1|1;a\\b|2|1;c/d|3|1;.|4|1;C:|5|1;"
                                      L"PC2|0|1;OLD|0|0;");
  profile::UpdateUserProfile(L"HostCount", L"2");
  WriteFileBytes(UserPath() / "PC1" / "Backupfile.txt",
                 Utf16LeFile(L"C:\\a.txt/1/1/01-31-2011 13:05:09/U\r\n"));
  WriteFileBytes(UserPath() / "PC2" / "Backupfile.txt",
                 Utf16LeFile(L"D:\\b.txt/1/1/01-31-2011 13:05:09/U\r\n"));

  TavrinEenum e;
  EXPECT_EQ(e.TavrinELocalRefresh(), 1);
  EXPECT_TRUE(install_.Codes().empty());  // everything was on disk
  EXPECT_TRUE(e.IsItemExists(L"pc2"));
  EXPECT_FALSE(e.IsItemExists(L"OLD"));
  EXPECT_EQ(browsing::CurrentBrowsingState().machine_list, (std::vector<std::wstring>{L"PC1", L"PC2"}));
  const std::wstring mpc = UserFolder() + platform::kPathSeparator + L"MPC.ini";
  EXPECT_EQ(platform::ReadIniString(L"MPC", L"HostCount", mpc), L"2");
  FindData data;
  EXPECT_EQ(e.TavrinEFindFirstFile(L"pc2\\D:\\", data), 2);
  EXPECT_EQ(data.cFilename, L"b.txt");

  // A computer without a listing on disk adds no line of its own.
  profile::UpdateUserProfile(L"List", L"PC1|0|1;PC2|0|1;PC3|0|1;");
  EXPECT_EQ(e.ReadMachineList(), 3);
  std::vector<std::string> machine_lines;
  std::istringstream trace(TraceText());
  for (std::string line; std::getline(trace, line);)
    if (std::size_t at = line.find("ReadMachineList :"); at != std::string::npos)
      machine_lines.push_back(line.substr(at));
  const std::string out = "ReadMachineList : a machine name that cannot be a folder name is left out\r";
  EXPECT_EQ(machine_lines, (std::vector<std::string>{
      out, out, out, out, out, "ReadMachineList :: Total Machine Count : 2\r",
      "ReadMachineList : Total Machine List : PC1;PC2;\r", "ReadMachineList :: Total Machine Count : 3\r",
      "ReadMachineList : Total Machine List : PC1;PC2;PC3;\r"}));
}

TEST_F(EnumTest, MissingListingIsLoggedAndFindsNothing) {
  install_.SetScenario(EngineScenario().On(119).Output(402).On(122).Output(402));
  TavrinEenum e;
  EXPECT_EQ(e.TavrinELocalRefresh(), 0);
  EXPECT_NE(TraceText().find("No Backup File , So exiting"), std::string::npos);
  EXPECT_NE(TraceText().find("Backupfile does nt exist so calling TavrinEInit for alice user"),
            std::string::npos);
  FindData data;
  EXPECT_EQ(e.TavrinEFindFirstFile(L"C:\\", data), -1);
}

TEST_F(EnumTest, MachineInfoLeavesTheTextTheCallerShows) {
  struct Case {
    const char* language_file;  // nullptr: none
    long long answer;
    std::wstring text;
  };
  const Case cases[] = {
      {nullptr, -416, L"Unable to connect to the server. Try later."},
      {"[Strings]\r\n683=  Keine Verbindung \r\n", -12009, L"Keine Verbindung"},
      {"[Strings]\r\n683=   \r\n", -416, L"Unable to connect to the server. Try later."},
      {nullptr, -400,
       L"Login failed. Reason: The requested operation has failed due to change of password in the "
       L"website.\r\nPlease log out and log in with the new password to continue the operation."},
  };
  for (const Case& c : cases) {
    std::filesystem::remove_all(install_.path() / "Lang");
    if (c.language_file) WriteFileBytes(install_.path() / "Lang" / "English.ini", c.language_file);
    install_.SetScenario(EngineScenario().On(119).Output(c.answer));
    TavrinEenum e;
    EXPECT_EQ(e.GetMultiplePCInfo(), c.answer);
    EXPECT_EQ(foundation::ThreadState().last_error_text, c.text) << c.answer;
  }
}

// Sizes past 2^53, odd ones among them: a size read through a double would lose the last bit.
constexpr std::int64_t kBigSize = std::int64_t{1} << 53;

std::string Versions(int count) {
  std::string text;
  for (int v = 1; v <= count; ++v)
    text += std::to_string(v) + "/01-31-2011 13:05:09/01-30-2011 10:00:00/" + std::to_string(kBigSize + v) + "|";
  return text + "\r\n";
}

TEST_F(EnumTest, VersionsComeNewestFirstAtMostThirtyOrNoneWithoutARecord) {
  install_.SetScenario(EngineScenario().On(113).Output(402).WithFile("BackupVersion.txt", Versions(45)));
  TavrinEenum e;
  FileVersions v;
  EXPECT_EQ(e.GetFirstVersion(L"C:\\Docs\\a.txt", v), 45);
  EXPECT_EQ(v.nVersion, 45);
  EXPECT_EQ(v.nFileSize, kBigSize + 45);
  std::vector<int> seen{v.nVersion};
  while (e.GetNextVersion(v) != -1) seen.push_back(v.nVersion);
  ASSERT_EQ(seen.size(), 30u);
  EXPECT_EQ(seen.back(), 16);
  ASSERT_EQ(install_.Journal().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(platform::ToFsPath(install_.Journal()[0].folder)));
  // A success without versions gives nothing; a failure code or a crash is the
  // version request's own fault test's (hardening).
  for (const char* answer : std::initializer_list<const char*>{"0|", nullptr}) {
    EngineScenario none = EngineScenario().On(113).Output(402);
    install_.SetScenario(answer ? none.WithFile("BackupVersion.txt", answer) : none);
    EXPECT_EQ(e.GetFirstVersion(L"C:\\a.txt", v), -1) << (answer ? answer : "no answer file");
  }
}

}  // namespace
}  // namespace tavrine::testing
