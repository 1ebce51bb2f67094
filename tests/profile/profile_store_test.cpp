#include "profile/profile_store.h"

#include <gtest/gtest.h>

#include <utility>

#include "foundation/file_system.h"
#include "foundation/trace_log.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "profile/character_shift.h"
#include "profile/profile_fixture.h"
#include "support/temp_folder.h"

namespace tavrine::profile {
namespace {

using testing::ReadFileBytes;

std::wstring UserKey(const ProfileStore& store, const std::wstring& user) {
  return store.root_key() + L"\\" + user;
}

// A store of an installation of its own.
class FreshStore : public ::testing::Test {
 protected:
  ProfileFixture fixture_;
  ProfileStore store_ = fixture_.Store();
};

TEST_F(FreshStore, RootKeyDropsOuterSeparatorsAndWithoutAnInstallationNameTheStoreIsClosed) {
  EXPECT_EQ(RootKeyFor(L"\\TavrinE/"), L"Software\\Brennick\\TavrinE");
  EXPECT_EQ(RootKeyFor(L"Brand\\Sub"), L"Software\\Brennick\\Brand\\Sub");
  EXPECT_EQ(RootKeyFor(L"\\/"), L"");
  ProfileStore closed(fixture_.Registry(), L"");
  EXPECT_FALSE(closed.available());
  EXPECT_FALSE(closed.SetCurrentUser(L"alice"));
  EXPECT_FALSE(closed.UpdateForUser(L"alice", L"username", L"alice"));
  // Nothing may land in the shared Brennick key.
  EXPECT_FALSE(fixture_.Registry()->KeyExists(L"Software\\Brennick\\alice"));
  EXPECT_EQ(fixture_.Registry()->ReadString(L"Software\\Brennick", L"CurrentUser"), std::nullopt);
}

TEST_F(FreshStore, ValuesRoundTripAndSecretsNeverReachTheBackingStoreAsPlainText) {
  const std::wstring user = L"J\u00FCrgen";
  ASSERT_TRUE(store_.SetCurrentUser(user));
  // Registry names ignore case, so every spelling is the same protected value;
  // the plain one last, so the store file holds the secret only after it.
  const std::wstring names[] = {L"password", L"Password", L"ENCPASSWORD", L"encpasswordnew",
                                L"ProxyPass", L"proxypass", L"username"};
  const std::wstring values[] = {
      L"hunter2-Geheimnis", L"J\u00FCrgen \u20AC \u0416\u0435\u043D\u044F", L"p@ss~}\u00FF\u00FE",
      L"", L"line1\r\nline2", L"x\U0001F600y", std::wstring(3000, L'z'),
  };
  for (const std::wstring& name : names) {
    for (const std::wstring& value : values) {
      SCOPED_TRACE(::testing::PrintToString(name) + " = " + ::testing::PrintToString(value));
      ASSERT_TRUE(store_.Update(name, value));
      EXPECT_EQ(fixture_.Store().Get(name), value);
      std::optional<std::wstring> raw = store_.registry().ReadString(UserKey(store_, user), name);
      ASSERT_TRUE(raw);
      if (name == L"username") {
        EXPECT_EQ(*raw, value);  // ordinary values stay readable REG_SZ text
      } else {
        EXPECT_EQ(raw->find(L"hunter2"), std::wstring::npos);
        if (foundation::FileExists(ProfileStoreFile())) {  // POSIX; Windows keeps the registry
          EXPECT_EQ(ReadFileBytes(platform::ToFsPath(ProfileStoreFile())).find("hunter2"),
                    std::string::npos);
        }
      }
    }
  }
}

TEST_F(FreshStore, KeepsTheDesignedLayout) {
  ASSERT_TRUE(store_.Update(kCurrentUserValue, L"bob"));
  ASSERT_TRUE(store_.Update(kDefaultUserValue, L"bob"));
  ASSERT_TRUE(store_.Update(L"serverip", L"10.0.0.1"));
  platform::Registry& registry = store_.registry();
  EXPECT_EQ(registry.ReadString(store_.root_key(), L"CurrentUser"), L"bob");
  EXPECT_EQ(registry.ReadString(store_.root_key(), L"Default User name"), L"bob");
  EXPECT_EQ(registry.ReadString(UserKey(store_, L"bob"), L"serverip"), L"10.0.0.1");
  // The globals never land in a user's subkey, whatever the spelling.
  ASSERT_TRUE(store_.UpdateForUser(L"bob", L"currentuser", L"carol"));
  EXPECT_EQ(registry.ReadString(UserKey(store_, L"bob"), L"CurrentUser"), std::nullopt);
  EXPECT_EQ(store_.CurrentUser(), L"carol");
  EXPECT_EQ(store_.Get(L"CurrentUser"), L"carol");
}

TEST_F(FreshStore, SwitchingTheCurrentUserSwitchesEveryValueAndDeletingForgetsIt) {
  ASSERT_TRUE(store_.SetCurrentUser(L"alice"));
  ASSERT_TRUE(store_.Update(L"password", L"alice-pw"));
  ASSERT_TRUE(store_.Update(L"port", L"443"));
  ASSERT_TRUE(store_.SetCurrentUser(L"bob"));
  EXPECT_EQ(store_.Get(L"password"), L"");
  EXPECT_EQ(store_.Get(L"port"), L"");
  ASSERT_TRUE(store_.Update(L"password", L"bob-pw"));
  ASSERT_TRUE(store_.SetCurrentUser(L"ALICE"));
  EXPECT_EQ(store_.Get(L"password"), L"alice-pw");
  EXPECT_EQ(store_.GetForUser(L"bob", L"password"), L"bob-pw");
  EXPECT_EQ(store_.Get(L"port"), L"443");
  ASSERT_TRUE(store_.SetDefaultUser(L"alice"));
  ASSERT_TRUE(store_.DeleteUser(L"alice"));
  EXPECT_EQ(store_.CurrentUser(), L"");
  EXPECT_EQ(store_.DefaultUser(), L"");
  EXPECT_EQ(store_.Users(), std::vector<std::wstring>{L"bob"});
}

TEST_F(FreshStore, WithoutASafeCurrentUserNothingIsReadOrWrittenAndRefusedNamesNeverBecomeKeys) {
  EXPECT_EQ(store_.CurrentUser(), L"");  // no store_ file or key yet
  EXPECT_TRUE(store_.Users().empty());
  ASSERT_TRUE(store_.UpdateForUser(L"alice", L"username", L"alice"));
  EXPECT_EQ(store_.Get(L"username"), L"");
  EXPECT_FALSE(store_.Update(L"username", L"stray"));
  EXPECT_TRUE(store_.registry().ListValues(store_.root_key()).empty());
  EXPECT_EQ(store_.GetForUser(L"alice", L"username"), L"alice");
  ASSERT_TRUE(store_.SetCurrentUser(L"alice"));
  for (const wchar_t* name : {L"..", L"a\\b", L"../x", L"CON", L"x:y"}) {
    EXPECT_FALSE(store_.SetCurrentUser(name)) << ::testing::PrintToString(name);
    EXPECT_FALSE(store_.SetDefaultUser(name));
    EXPECT_FALSE(store_.UpdateForUser(name, L"username", L"x"));
    EXPECT_EQ(store_.GetForUser(name, L"username"), L"");
  }
  EXPECT_EQ(store_.CurrentUser(), L"alice");
  EXPECT_EQ(store_.registry().ListSubkeys(store_.root_key()), std::vector<std::wstring>{L"alice"});
  // Clearing the current user ends writes again.
  ASSERT_TRUE(store_.SetCurrentUser(L""));
  EXPECT_FALSE(store_.Update(L"username", L"stray"));
  EXPECT_EQ(store_.GetForUser(L"alice", L"username"), L"alice");
  // A stored name that could leave the root is no user at all.
  ASSERT_TRUE(store_.registry().WriteString(store_.root_key(), L"CurrentUser", L"..\\..\\evil"));
  ASSERT_TRUE(store_.registry().WriteString(UserKey(store_, L"..\\..\\evil"), L"username", L"x"));
  EXPECT_EQ(store_.CurrentUser(), L"");
  EXPECT_EQ(store_.Get(L"username"), L"");
  EXPECT_FALSE(store_.Update(L"username", L"y"));
}

// Refuses every write, so the failure paths can be seen.
class RefusingRegistry final : public platform::Registry {
  using S = const std::wstring&;

 public:
  std::optional<std::wstring> ReadString(S, S name) override {
    return name == L"CurrentUser" ? std::optional<std::wstring>(L"alice") : std::nullopt;
  }
  bool WriteString(S, S, S) override { return false; }
  std::optional<std::uint32_t> ReadDword(S, S) override { return std::nullopt; }
  bool WriteDword(S, S, std::uint32_t) override { return false; }
  bool DeleteValue(S, S) override { return false; }
  bool DeleteKeyTree(S) override { return false; }
  bool KeyExists(S) override { return false; }
  std::vector<std::wstring> ListSubkeys(S) override { return {}; }
  std::vector<std::wstring> ListValues(S) override { return {}; }
};

TEST(ProfileStore, AFailedWriteIsTracedByNameWithoutTheSecret) {
  ProfileFixture fixture;
  ProfileStore store(std::make_unique<RefusingRegistry>(), fixture.installation());
  EXPECT_FALSE(store.Update(L"ProxyPass", L"s3cret-XYZ"));
  EXPECT_FALSE(store.Update(L"password", L"s3cret-XYZ"));
  std::string log = ReadFileBytes(platform::ToFsPath(foundation::TraceFilePath()));
  EXPECT_NE(log.find("ProxyPass"), std::string::npos);
  EXPECT_NE(log.find("[EXCEPTION] "), std::string::npos);
  EXPECT_EQ(log.find("s3cret"), std::string::npos);
  EXPECT_EQ(log.find(platform::WideToUtf8(ShiftCharacters(L"s3cret"))), std::string::npos);
}

TEST(ProfileShorthands, FollowTheLoadedInstallationOrElseTheConfiguration) {
  ProfileFixture fixture;
  ASSERT_TRUE(SetCurrentUserName(L"alice"));
  ASSERT_TRUE(UpdateUserProfile(L"password", L"pw"));
  ASSERT_TRUE(WriteDefaultUser(L"alice"));
  EXPECT_EQ(fixture.Store().Get(L"password"), L"pw");
  // Nothing loaded yet: the configuration file names the installation.
  foundation::LoadedConfiguration().installation_name.clear();
  EXPECT_EQ(GetUserProfile(L"password"), L"pw");
  EXPECT_EQ(CurrentUserName(), L"alice");
  EXPECT_EQ(DefaultUserName(), L"alice");
  // A loaded name wins over the file; that installation's store is apart, deletes too.
  foundation::LoadedConfiguration().installation_name = fixture.OtherInstallation();
  EXPECT_EQ(GetUserProfile(L"password"), L"");
  EXPECT_EQ(CurrentUserName(), L"");
  ASSERT_TRUE(SetCurrentUserName(L"alice"));
  ASSERT_TRUE(ProfileStore::ForCurrentInstallation().DeleteUser(L"alice"));
  EXPECT_EQ(fixture.Store().Get(L"password"), L"pw");
}

// The ANSI code page is Windows-1252 natively and under Wine's default locale.
// abc, "" and ~ (-> the euro sign, 128) are the request writer's test's.
TEST(ShiftCharacters, RaisesEachAnsiCodeByTwoAndLeavesOutWhatCannotMove) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {  // plain, shifted
      {L"}", L"\u007F"},           // 125 -> 127
      {L"\u20AC", L"\u201A"},      // 128 -> 130
      {L"\u00E9t\u00E9", L"\u00EBv\u00EB"},
      {L"a\u00FEb", L"cd"},        // 254 + 2 is past the code page
      {L"a\u00FFb", L"cd"},
      {L"a\u0416b", L"cd"},        // Cyrillic has no code in 1252
      {L" 9", L"\";"},
  };
  for (const auto& [plain, shifted] : cases) {
    EXPECT_EQ(ShiftCharacters(plain), shifted) << "plain: " << ::testing::PrintToString(plain);
  }
}

TEST(ShiftForStorage, RoundTripsEveryTextAndIsTheRequestShiftWhereThatCarriesIt) {
  std::wstring every_code;
  for (unsigned code = 0; code + 2 < 256; ++code) every_code += *platform::CharOfAnsiCode(code);
  for (const std::wstring& text : {std::wstring(L"P@ssw0rd!"), std::wstring(L"\u00C4rger~}"),
                                   every_code}) {
    EXPECT_EQ(UnshiftCharacters(ShiftCharacters(text)), text);
    EXPECT_EQ(ShiftForStorage(text), ShiftCharacters(text));
  }
  // Texts the request shift would mangle: wrapping codes, outside the code page, beyond the BMP.
  for (const wchar_t* text : {L"\u00FE\u00FF", L"\u0416\u044E\u043B\u044C", L"x\U0001F600y",
                              L"~\u00FFa\u0416\u20AC", L""}) {
    std::optional<std::wstring> stored = ShiftForStorage(text);
    ASSERT_TRUE(stored) << ::testing::PrintToString(text);
    EXPECT_EQ(UnshiftFromStorage(*stored), text);
  }
  EXPECT_EQ(ShiftForStorage(L"\u00FF"), std::wstring(1, L'\x01'));
}

}  // namespace
}  // namespace tavrine::profile
