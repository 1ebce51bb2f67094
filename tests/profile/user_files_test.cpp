#include <gtest/gtest.h>

#include <tuple>

#include "foundation/configuration.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_fixture.h"
#include "profile/safe_name.h"
#include "profile/user_list.h"
#include "profile/user_name_ini.h"
#include "support/temp_folder.h"

namespace tavrine::profile {
namespace {

using testing::ReadFileBytes;
using testing::WriteFileBytes;

TEST(UserNameIni, RandomNumberPerInstallationVirtualPathAndUserNameRoundTrip) {
  {
    testing::InstallFolder install;
    EXPECT_FALSE(WriteStoredRandomNumber(L"1"));
    EXPECT_EQ(ReadStoredRandomNumber(), L"");
    EXPECT_EQ(ReadFileBytes(install.path() / "UserName.ini"), "");
  }
  ProfileFixture fixture;
  // Each value is written beside the other keys.
  fixture.install().WriteUserNameIni("[Registry]\r\nUserName=  HOMEPC  \r\nOther=kept\r\n");
  EXPECT_EQ(ReadUserNameIniUserName(), L"HOMEPC");
  ASSERT_TRUE(WriteVirtualPath(fixture.install().wpath()));
  ASSERT_TRUE(WriteUserNameIniUserName(L"OFFICE"));
  ASSERT_TRUE(WriteStoredRandomNumber(L"12725534099"));
  EXPECT_EQ(ReadVirtualPath(), fixture.install().wpath());
  EXPECT_EQ(ReadUserNameIniUserName(), L"OFFICE");
  EXPECT_EQ(ReadStoredRandomNumber(), L"12725534099");
  EXPECT_EQ(platform::ReadIniString(L"Registry",
                                    fixture.installation() + L" client system random number",
                                    foundation::UserNameIniPath()),
            L"12725534099");
  EXPECT_EQ(platform::ReadIniString(L"Registry", L"Other", foundation::UserNameIniPath()), L"kept");
  foundation::LoadedConfiguration().installation_name = fixture.OtherInstallation();
  EXPECT_EQ(ReadStoredRandomNumber(), L"");
}

TEST(UserList, AddsOnceWhateverTheCaseAndKeepsTheOrderButNeverARefusedName) {
  testing::InstallFolder install;
  for (const wchar_t* user : {L"alice", L"J\u00FCrgen", L"ALICE", L"j\u00DCRGEN", L"bob"}) {
    EXPECT_TRUE(AddToUserList(user));
  }
  for (const wchar_t* user : {L"", L"..", L"a\\b", L"x=y\r\nUser9=evil", L"a/b"}) {
    EXPECT_FALSE(AddToUserList(user)) << ::testing::PrintToString(user);
  }
  // One key a user, with the count.
  EXPECT_EQ(ReadFileBytes(install.path() / "userlist.ini"),
            testing::Utf16LeFile(
                L"[Users]\r\nCount=3\r\nUser1=alice\r\nUser2=J\u00FCrgen\r\nUser3=bob\r\n"));
  EXPECT_TRUE(RemoveFromUserList(L"J\u00DCRGEN"));
  EXPECT_TRUE(RemoveFromUserList(L"nobody"));
  EXPECT_EQ(ReadUserList(), (std::vector<std::wstring>{L"alice", L"bob"}));
}

TEST(UserList, DamagedOrHandWrittenFilesGiveTheValidNames) {
  struct Case {
    std::string bytes;
    std::vector<std::wstring> users;
  } cases[] = {
      {"", {}},
      {std::string("\xFF\xFE\x00", 3), {}},
      {"\x01\x02garbage\xFF", {}},
      // ANSI, hand-written: stale count, gaps, case and order of keys, a duplicate, a refused name.
      {"[users]\r\nCount=1\r\nUser3 = carol \r\nuser1=alice\r\nUser2=..\r\nUser4=ALICE\r\n"
       "User7=\xE9mile\r\n[Other]\r\nUser5=dave\r\n",
       {L"alice", L"carol", L"\u00E9mile"}},
      {"[Users]\r\nUser0=zero\r\nUserX=x\r\nUser=y\r\nUser99999999999=big\r\n", {}},
  };
  for (const Case& c : cases) {
    testing::InstallFolder install;
    WriteFileBytes(install.path() / "userlist.ini", c.bytes);
    EXPECT_EQ(ReadUserList(), c.users) << ::testing::PrintToString(c.bytes);
    ASSERT_TRUE(AddToUserList(L"zed"));
    std::vector<std::wstring> expected = c.users;
    expected.push_back(L"zed");
    EXPECT_EQ(ReadUserList(), expected);
  }
}

TEST(IsSafeName, RefusesOnlyNamesThatCouldLeaveTheWorkRootOrAliasAnother) {
  const std::wstring refused[] = {
      L"", L".", L"..", L"a/b", L"a\\b", L"..\\x", L"../x", L"\\\\server\\share", L"C:",
      L"a:b", L"a<b", L"a>b", L"a\"b", L"a|b", L"a?b", L"a*b", L"a\tb", L"a\nb", L"a\rb",
      std::wstring(L"a\0b", 3), L"a\x7F", L"trailingdot.", L"trailingspace ", L"CON", L"con.txt",
      L"Nul ", L"aux.tar.gz", L"PRN", L"COM1", L"lpt9.log", std::wstring(256, L'x'),
  };
  const std::wstring accepted[] = {
      L"alice", L"J\u00FCrgen", L"\u0416\u0435\u043D\u044F", L"john.doe", L"john.doe@example.com",
      L" leading", L"HOME PC", L"a..b", L"COM0", L"CONSOLE", L"LPT", L"nul1",
      std::wstring(255, L'x'),
  };
  for (const auto& name : refused) EXPECT_FALSE(IsSafeName(name)) << ::testing::PrintToString(name);
  for (const auto& name : accepted) EXPECT_TRUE(IsSafeName(name)) << ::testing::PrintToString(name);
}

TEST(SameUserName, IgnoresCaseBeyondAscii) {
  const std::tuple<const wchar_t*, const wchar_t*, bool> cases[] = {
      {L"Alice", L"aLICE", true},
      {L"J\u00DCRGEN", L"j\u00FCrgen", true},
      {L"\u0416\u0415\u041D\u042F", L"\u0436\u0435\u043D\u044F", true},
      {L"\u0141ukasz", L"\u0142UKASZ", true},
      {L"\u0178", L"\u00FF", true},
      {L"alice", L"alicE ", false},
      {L"a", L"b", false},
      {L"\u00D7", L"\u00F7", false},  // multiplication and division signs are not letters
  };
  for (const auto& [a, b, same] : cases) {
    EXPECT_EQ(SameUserName(a, b), same)
        << ::testing::PrintToString(a) << " vs " << ::testing::PrintToString(b);
  }
}

}  // namespace
}  // namespace tavrine::profile
