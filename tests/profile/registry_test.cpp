#include "platform/registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/path.h"
#include "profile/profile_fixture.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

namespace fs = std::filesystem;

// A throw-away key (real HKEY_CURRENT_USER under Wine) and store file (POSIX).
class RegistrySeam : public ::testing::Test {
 protected:
  RegistrySeam()
      : key_(L"Software\\Brennick\\" + profile::ProfileFixture::FreshInstallationName()),
        registry_(OpenCurrentUserRegistry(FromFsPath(temp_.path() / "store.ini"))) {}
  ~RegistrySeam() override { registry_->DeleteKeyTree(key_); }

  std::wstring Key(const std::wstring& below) const { return key_ + L"\\" + below; }

  testing::TempFolder temp_;
  std::wstring key_;
  std::unique_ptr<Registry> registry_;
};

TEST_F(RegistrySeam, NamesAndValuesRoundTripWhateverTheyHoldAndNamesIgnoreCase) {
  // Each value under a name of its own; the first ones under names with format characters.
  const std::wstring names[] = {L"", L"a=b", L"a", L"[x]", L"%", L"%25", L"Default User name",
                                L"\u00FCmlaut", L"#dword:1"};
  const std::wstring values[] = {
      L"", L"plain", L"a=b", L"[Section]", L"%41%", L"#dword:5", L";comment", L"line\r\nbreak",
      L"tab\there", L"  spaced  ", std::wstring(L"nul\0inside", 10), L"J\u00FCrgen \u20AC \u0416",
      L"x\U0001F600y", std::wstring(10000, L'v'),
  };
  const auto name_of = [&](std::size_t i) {
    return i < std::size(names) ? names[i] : L"v" + std::to_wstring(i);
  };
  for (std::size_t i = 0; i < std::size(values); ++i) {
    ASSERT_TRUE(registry_->WriteString(key_, name_of(i), values[i])) << i;
  }
  for (std::size_t i = 0; i < std::size(values); ++i) {
    EXPECT_EQ(registry_->ReadString(key_, name_of(i)), values[i])
        << ::testing::PrintToString(name_of(i));
  }
  EXPECT_EQ(registry_->ListValues(key_).size(), std::size(values));
  // Key and value names ignore case and outer backslashes; the first spelling stays.
  ASSERT_TRUE(registry_->WriteString(Key(L"J\u00FCrgen"), L"UserName", L"one"));
  ASSERT_TRUE(registry_->WriteString(L"\\" + Key(L"J\u00DCRGEN") + L"\\", L"USERNAME", L"two"));
  EXPECT_EQ(registry_->ReadString(Key(L"j\u00FCrgen"), L"username"), L"two");
  EXPECT_EQ(registry_->ListSubkeys(key_), std::vector<std::wstring>{L"J\u00FCrgen"});
  EXPECT_EQ(registry_->ListValues(Key(L"J\u00FCrgen")), std::vector<std::wstring>{L"UserName"});
}

TEST_F(RegistrySeam, MissingKeysAndValuesAndOtherTypesReadAsNothing) {
  EXPECT_EQ(registry_->ReadString(Key(L"none"), L"x"), std::nullopt);
  EXPECT_EQ(registry_->ReadDword(Key(L"none"), L"x"), std::nullopt);
  EXPECT_FALSE(registry_->KeyExists(Key(L"none")));
  EXPECT_TRUE(registry_->ListSubkeys(Key(L"none")).empty());
  EXPECT_TRUE(registry_->ListValues(Key(L"none")).empty());
  EXPECT_TRUE(registry_->DeleteValue(Key(L"none"), L"x"));
  EXPECT_TRUE(registry_->DeleteKeyTree(Key(L"none")));
  ASSERT_TRUE(registry_->WriteString(key_, L"keep", L"1"));
  ASSERT_TRUE(registry_->WriteString(key_, L"drop", L"2"));
  ASSERT_TRUE(registry_->DeleteValue(key_, L"DROP"));
  EXPECT_EQ(registry_->ListValues(key_), std::vector<std::wstring>{L"keep"});
  // Dwords and strings are different types.
  for (std::uint32_t number : {0u, 1u, 0xFFFFFFFFu}) {
    ASSERT_TRUE(registry_->WriteDword(key_, L"ProxyEnable", number));
    EXPECT_EQ(registry_->ReadDword(key_, L"ProxyEnable"), number);
  }
  EXPECT_EQ(registry_->ReadString(key_, L"ProxyEnable"), std::nullopt);
  ASSERT_TRUE(registry_->WriteString(key_, L"Text", L"1"));
  EXPECT_EQ(registry_->ReadDword(key_, L"Text"), std::nullopt);
}

TEST_F(RegistrySeam, DeletingAKeyTreeTakesItsSubkeysButNotSiblingsWithTheSamePrefix) {
  ASSERT_TRUE(registry_->WriteString(Key(L"ab\\deep\\deeper"), L"v", L"1"));
  ASSERT_TRUE(registry_->WriteString(Key(L"ab\\deep2"), L"v", L"1"));
  ASSERT_TRUE(registry_->WriteString(Key(L"ab"), L"v", L"2"));
  ASSERT_TRUE(registry_->WriteString(Key(L"abc"), L"v", L"3"));
  ASSERT_TRUE(registry_->WriteString(key_, L"v", L"4"));
  EXPECT_TRUE(registry_->KeyExists(Key(L"ab\\deep")));
  std::vector<std::wstring> subkeys = registry_->ListSubkeys(Key(L"ab"));
  std::sort(subkeys.begin(), subkeys.end());
  EXPECT_EQ(subkeys, (std::vector<std::wstring>{L"deep", L"deep2"}));

  ASSERT_TRUE(registry_->DeleteKeyTree(Key(L"AB")));
  EXPECT_FALSE(registry_->KeyExists(Key(L"ab")));
  EXPECT_FALSE(registry_->KeyExists(Key(L"ab\\deep\\deeper")));
  EXPECT_EQ(registry_->ReadString(Key(L"abc"), L"v"), L"3");
  EXPECT_EQ(registry_->ReadString(key_, L"v"), L"4");
  EXPECT_EQ(registry_->ListSubkeys(key_), std::vector<std::wstring>{L"abc"});
  // The whole tree is never deleted.
  EXPECT_FALSE(registry_->DeleteKeyTree(L""));
  EXPECT_FALSE(registry_->DeleteKeyTree(L"\\"));
}

TEST_F(RegistrySeam, StoreFileIsPrivateReplacedWithoutLeftoversAndSurvivesDamage) {
  ASSERT_TRUE(registry_->WriteString(key_, L"good", L"kept"));
  const fs::path file = temp_.path() / "store.ini";
  if (!fs::exists(file)) GTEST_SKIP() << "kept in the registry here";
  const std::string good = testing::ReadFileBytes(file);
  // Even a file someone widened is written back private.
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                            fs::perms::others_read);
  ASSERT_TRUE(registry_->WriteString(key_, L"good", L"kept"));
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(temp_.path())) ++entries;
  EXPECT_EQ(entries, 1);
  const std::string damage[] = {
      "garbage without equals\n[unterminated\nx=y\n\xFF\xFE\x01\n", "=\n[]\n[\\\\\\]\n=x\n",
      std::string("\x00\xFF\x01\x02garbage", 11), "\xEF\xBB\xBF", std::string(100000, '['),
  };
  for (const std::string& bytes : damage) {
    for (const std::string& text : {bytes + "\n" + good, good + bytes}) {
      SCOPED_TRACE(::testing::PrintToString(text.substr(0, 40)));
      testing::WriteFileBytes(file, text);
      EXPECT_EQ(registry_->ReadString(key_, L"good"), L"kept");
      ASSERT_TRUE(registry_->WriteString(key_, L"more", L"1"));
      EXPECT_EQ(registry_->ReadString(key_, L"good"), L"kept");
      EXPECT_EQ(registry_->ReadString(key_, L"more"), L"1");
    }
  }
  // A second copy of a section loses to the first.
  testing::WriteFileBytes(file, good + "[" + WideToUtf8(key_) + "]\ngood=second copy loses\n");
  EXPECT_EQ(registry_->ReadString(key_, L"good"), L"kept");
}

}  // namespace
}  // namespace tavrine::platform
