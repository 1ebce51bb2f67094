#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "browsing/browsing_state.h"
#include "browsing/tavrine_enum.h"
#include "engine/engine_run.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "session_fixture.h"

namespace tavrine::testing {
namespace {

using browsing::FileVersions;
using browsing::FindData;
using browsing::TavrinEenum;

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
  install_.SetScenario(EngineScenario().On(119).Output(402).On(122).Output(402));
  TavrinEenum e;
  EXPECT_EQ(e.TavrinEInit(), 1);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{119, 122}));
  EXPECT_EQ(install_.Journal()[1].program, L"TavrinEClient.exe");
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

TEST_F(EnumTest, LocalRefreshReadsSeveralComputersPrefixed) {
  profile::UpdateUserProfile(L"List", L"PC1|0|1;pc1|0|1;PC2|0|1;OLD|0|0;");
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

TEST_F(EnumTest, MachineInfoPasswordChangedSetsTwoSentenceText) {
  install_.SetScenario(EngineScenario().On(119).Output(-400));
  TavrinEenum e;
  EXPECT_EQ(e.GetMultiplePCInfo(), -400);
  EXPECT_NE(foundation::CurrentSettings().last_error_text.find(L"website.\r\nPlease log out"),
            std::wstring::npos);
}

std::string Versions(int count) {
  std::string text;
  for (int v = 1; v <= count; ++v)
    text += std::to_string(v) + "/01-31-2011 13:05:09/01-30-2011 10:00:00/" + std::to_string(v * 10) + "|";
  return text + "\r\n";
}

TEST_F(EnumTest, VersionsComeNewestFirstAtMostThirty) {
  install_.SetScenario(EngineScenario().On(113).Output(402).WithFile("BackupVersion.txt", Versions(45)));
  TavrinEenum e;
  FileVersions v;
  EXPECT_EQ(e.GetFirstVersion(L"C:\\Docs\\a.txt", v), 45);
  EXPECT_EQ(v.nVersion, 45);
  EXPECT_EQ(v.nFileSize, 450);
  EXPECT_NE(v.ftLastWriteTime.dwHighDateTime, v.ftCreationTime.dwHighDateTime + 0xFFFF);
  std::vector<int> seen{v.nVersion};
  while (e.GetNextVersion(v) != -1) seen.push_back(v.nVersion);
  ASSERT_EQ(seen.size(), 30u);
  EXPECT_EQ(seen.back(), 16);
  ASSERT_EQ(install_.Journal().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(platform::ToFsPath(install_.Journal()[0].folder)));
}

TEST_F(EnumTest, VersionAnswersThatGiveNothing) {
  struct Case {
    const char* name;
    EngineScenario scenario;
  };
  const Case cases[] = {
      {"server reports none", EngineScenario().On(113).Output(402).WithFile("BackupVersion.txt", "0|")},
      {"no answer file", EngineScenario().On(113).Output(402)},
      {"engine failure code", EngineScenario().On(113).Output(-12)},
      {"engine crashes", EngineScenario().On(113).Crash()},
  };
  for (const Case& c : cases) {
    install_.SetScenario(c.scenario);
    TavrinEenum e;
    FileVersions v;
    EXPECT_EQ(e.GetFirstVersion(L"C:\\a.txt", v), -1) << c.name;
  }
}

}  // namespace
}  // namespace tavrine::testing
