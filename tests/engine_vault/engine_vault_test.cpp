// The reference engine in vault mode, run as a real process against the
// sample vault with requests written by the library's own writer.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cwctype>

#include "engine_vault/vault_fixture.h"
#include "operations/cls_api_interface.h"
#include "support/fake_clock.h"
#include "support/recording_ui.h"
#include "foundation/text_file.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/temp_folder.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

std::string Info(long long code, const std::string& text) {
  return std::to_string(code) + "\r\n" + text + "\r\n";
}

// Sample file contents: version n is n lines "<path> version n line i".
std::string SampleText(const std::string& path, int version) {
  std::string text;
  for (int i = 1; i <= version; ++i)
    text += path + " version " + std::to_string(version) + " line " + std::to_string(i) + "\r\n";
  return text;
}

long Bars(const std::string& text) { return static_cast<long>(std::count(text.begin(), text.end(), '|')); }

std::wstring WideOfUtf16(const std::string& bytes) {
  std::wstring text;
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
    text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                 (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return text;
}

std::wstring Lower(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(c));
  return text;
}

std::string RemoteFormOf(const fs::path& local) {
  std::string text = platform::WideToUtf8(platform::FromFsPath(local));
  for (char& c : text)
    if (c == '/') c = '\\';
  return text;
}

using Vault = VaultTest;

TEST_F(Vault, CredentialsAreCheckedWithTheServiceCodes) {
  struct Row {
    const wchar_t* user;
    const wchar_t* password;
    int code;
    long long expected;
  } rows[] = {
      {L"ben", L"ben-pass", 114, 402},   {L"BEN", L"ben-pass", 114, 402},
      {L"ben", L"Ben-pass", 114, -403},  {L"ben", L"", 116, -403},
      {L"nobody", L"ben-pass", 116, -401}, {L"ben", L"wrong", 119, -400},
      {L"ben", L"wrong", 110, -403},     {L"ben", L"wrong", 123, -403},
  };
  for (const Row& row : rows) {
    LogIn(row.user, row.password);
    VaultAnswer answer = Ask(row.code);
    EXPECT_EQ(answer.code, row.expected) << platform::WideToUtf8(row.user) << " code " << row.code;
    EXPECT_EQ(answer.has_output, row.expected > 0);
  }
}

TEST_F(Vault, FailureFileCarriesCodeAndText) {
  LogIn(L"nobody", L"x");
  fs::path folder = Exchange("H_info");
  Ask(114, folder);
  EXPECT_EQ(Read(folder / "DLLOutputInfo.txt"), Info(-401, "Invalid username"));
  EXPECT_FALSE(fs::exists(folder / "DLLOutput.txt"));
  EXPECT_FALSE(fs::exists(folder / "Quota.txt"));
}

TEST_F(Vault, AccountStatesAndMaintenance) {
  AppendToVaultFile("accounts/ben/account.txt", "status = closed\n");
  AppendToVaultFile("accounts/dora/account.txt", "status = not-activated\n");
  LogIn(L"ben", L"ben-pass");
  EXPECT_EQ(Ask(116).code, -507);
  LogIn(L"dora", L"dora-pass");
  EXPECT_EQ(Ask(116).code, -506);
  AppendToVaultFile("vault.txt", "maintenance = yes\n");
  EXPECT_EQ(Ask(117).code, -511);
}

TEST_F(Vault, EncryptionStatusPerAccount) {
  struct Row {
    const wchar_t* user;
    const wchar_t* password;
    long long status;
  } rows[] = {{L"anna", L"anna-pass", 902}, {L"ben", L"ben-pass", 901}, {L"dora", L"dora-pass", 900}};
  for (const Row& row : rows) {
    LogIn(row.user, row.password);
    EXPECT_EQ(Ask(110).code, row.status) << platform::WideToUtf8(row.user);
  }
}

TEST_F(Vault, SessionCompletionChecksThePrivateKey) {
  struct Row {
    const wchar_t* user;
    const wchar_t* password;
    const wchar_t* key;
    long long expected;
  } rows[] = {
      {L"anna", L"anna-pass", L"anna-key-2024", 402}, {L"anna", L"anna-pass", L"anna-key-2025", -404},
      {L"anna", L"anna-pass", L"", -404},             {L"ben", L"ben-pass", L"anything", 402},
  };
  for (const Row& row : rows) {
    LogIn(row.user, row.password, row.key);
    EXPECT_EQ(Ask(111).code, row.expected) << platform::WideToUtf8(row.key);
  }
}

TEST_F(Vault, FirstSessionSetsTheChosenKey) {
  LogIn(L"dora", L"dora-pass", L"dora secret \u00e9");
  EXPECT_EQ(Ask(111).code, 402);
  EXPECT_EQ(Ask(110).code, 902);
  LogIn(L"dora", L"dora-pass", L"dora secret e");
  EXPECT_EQ(Ask(111).code, -404);
  // The key is kept only as a salted digest.
  EXPECT_EQ(Read(vault() / "accounts/dora/account.txt").find("dora secret"), std::string::npos);
}

TEST_F(Vault, LoginReportsServerAddressAndPort) {
  LogIn(L"ben", L"ben-pass");
  VaultAnswer answer = Ask(116);
  EXPECT_EQ(answer.code, 402);
  EXPECT_EQ(answer.output1, "127.0.0.1\r\n443\r\n");
}

TEST_F(Vault, EmailResolvesToUserNames) {
  struct Row {
    const wchar_t* email;
    long long code;
    std::string names;
  } rows[] = {{L"ben@example.com", 402, "ben|dora\r\n"},
              {L"ANNA@example.com", 402, "anna\r\n"},
              {L"nobody@example.com", -512, ""}};
  for (const Row& row : rows) {
    LogIn(row.email, L"not checked");
    VaultAnswer answer = Ask(117);
    EXPECT_EQ(answer.code, row.code);
    EXPECT_EQ(answer.output1, row.names);
  }
}

TEST_F(Vault, QuotaCountsEveryStoredVersion) {
  LogIn(L"ben", L"ben-pass");
  fs::path folder = Exchange("H_quota");
  EXPECT_EQ(Ask(114, folder).code, 402);
  EXPECT_EQ(Read(folder / "Quota.txt"), "379\r\n12884901888\r\n");  // 41 + 82 + 256
}

TEST_F(Vault, ListingByteForByte) {
  LogIn(L"ben", L"ben-pass");
  fs::path folder = Exchange("H_list");
  EXPECT_EQ(Ask(115, folder).code, 0);
  EXPECT_EQ(Read(folder / "Backupfile.txt"),
            Utf16(L"C:\\Users\\ben\\notes.txt/2/82/01-17-2023 09:30:00/A\r\n"
                  L"C:\\Users\\ben\\Pictures\\cat.bin/1/256/01-26-2023 09:30:00/A\r\n"));

  LogIn(L"dora", L"dora-pass");
  folder = Exchange("H_empty");
  EXPECT_EQ(Ask(115, folder).code, 0);
  EXPECT_FALSE(fs::exists(folder / "Backupfile.txt")) << "an empty backup has no listing";
}

TEST_F(Vault, BrowseInitWritesOneListingPerComputerAndTheMachineList) {
  LogIn(L"anna", L"anna-pass");
  EXPECT_EQ(Ask(122).code, 402);
  EXPECT_EQ(profile::GetUserProfile(L"Count"), L"2");
  EXPECT_EQ(profile::GetUserProfile(L"List"), L"HOMEPC|1|1;WORKPC|2|1;");
  EXPECT_EQ(Read(UserFolder() / "WORKPC" / "Backupfile.txt"),
            Utf16(L"C:\\Projects\\plan.txt/4/156/02-28-2023 09:30:00/A\r\n"
                  L"C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt/2/102/03-08-2023 09:30:00/A\r\n"));
  EXPECT_TRUE(fs::exists(UserFolder() / "HOMEPC" / "Backupfile.txt"));
  EXPECT_FALSE(fs::exists(UserFolder() / "Backupfile.txt"));

  LogIn(L"ben", L"ben-pass");
  EXPECT_EQ(Ask(119).code, 402);
  EXPECT_EQ(profile::GetUserProfile(L"Count"), L"0");
  EXPECT_EQ(profile::GetUserProfile(L"List"), L"");
  EXPECT_EQ(Ask(122).code, 402);
  EXPECT_TRUE(fs::exists(UserFolder() / "Backupfile.txt"));
}

TEST_F(Vault, VersionsOfAFile) {
  LogIn(L"anna", L"anna-pass");
  fs::path folder = Exchange("H_versions");
  EXPECT_EQ(AskVersions(L"HOMEPC\\C:\\Documents\\Reports\\2023\\Q1 report.txt", folder).code, 402);
  EXPECT_EQ(Read(folder / "BackupVersion.txt"),
            "1/01-16-2023 09:30:00/01-16-2023 10:30:00/58|"
            "2/01-17-2023 09:30:00/01-17-2023 10:30:00/116|"
            "3/01-18-2023 09:30:00/01-18-2023 10:30:00/174|\r\n");

  struct Row {
    const wchar_t* remote;
    long long code;
    std::size_t versions;
  } rows[] = {
      {L"WORKPC\\C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt", 402, 2},
      {L"workpc\\c:\\projects\\PLAN.TXT", 402, 4},
      {L"HOMEPC\\C:\\Projects\\plan.txt", -408, 0},  // on the other computer only
      {L"HOMEPC\\C:\\Documents", -408, 0},           // a folder has no versions
      {L"HOMEPC\\C:\\Documents\\..\\..\\..\\..\\ben\\computers\\BENLAPTOP\\C:\\Users\\ben\\notes.txt", -408, 0},
  };
  for (const Row& row : rows) {
    folder = Exchange("H_versions");
    EXPECT_EQ(AskVersions(row.remote, folder).code, row.code) << platform::WideToUtf8(row.remote);
    std::string text = Read(folder / "BackupVersion.txt");
    EXPECT_EQ(static_cast<std::size_t>(Bars(text)), row.versions);
    if (row.versions == 0) {
      EXPECT_EQ(text, "0\r\n");
    }
  }
}

class VaultRestore : public VaultTest {
 protected:
  VaultAnswer Restore(const std::wstring& parent, const std::wstring& hosts) {
    fs::path folder = Exchange("H_restore");
    foundation::WriteUtf16Lines(platform::FromFsPath(folder / "restdestdir.txt"),
                                {L"0", L"4", platform::FromFsPath(destination_.path()), parent});
    if (!hosts.empty()) {
      const std::wstring mpc = platform::FromFsPath(folder / "MPC.ini");
      platform::WriteIniString(L"MPC", L"Hosts", hosts, mpc);
      platform::WriteIniString(L"MPC", L"HostCount", L"1", mpc);
    }
    return Ask(123, folder);
  }
  std::size_t FilesRestored() const {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(destination_.path()))
      count += entry.is_regular_file() ? 1 : 0;
    return count;
  }
  TempFolder destination_;
};

TEST_F(VaultRestore, FolderOfOneComputerLandsUnderItsNameWithTheLatestVersions) {
  LogIn(L"anna", L"anna-pass", L"anna-key-2024");
  EXPECT_EQ(Restore(L"C:\\Documents", L"HOMEPC|1|1;").code, 402);
  const fs::path report = destination_.path() / "Documents" / "Reports" / "2023" / "Q1 report.txt";
  EXPECT_EQ(Read(report), SampleText("C:\\Documents\\Reports\\2023\\Q1 report.txt", 3));
  EXPECT_EQ(FilesRestored(), 3u);
  EXPECT_TRUE(fs::exists(destination_.path() / "Documents" /
                         platform::ToFsPath(L"\u0424\u043e\u0442\u043e") /
                         platform::ToFsPath(L"\u043b\u0435\u0442\u043e.txt")));
  auto written = std::chrono::file_clock::to_sys(fs::last_write_time(report));
  EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(written).time_since_epoch().count(),
            1674034200);  // 01-18-2023 09:30:00 UTC
}

TEST_F(VaultRestore, ComputerComesFromMpcIniOrTheLeadingName) {
  LogIn(L"anna", L"anna-pass", L"anna-key-2024");
  EXPECT_EQ(Restore(L"C:\\Projects\\plan.txt", L"WORKPC|2|1;").code, 402);
  EXPECT_EQ(Read(destination_.path() / "plan.txt"), SampleText("C:\\Projects\\plan.txt", 4));
  EXPECT_EQ(Restore(L"C:\\Projects\\plan.txt", L"HOMEPC|1|1;").code, -408);
  EXPECT_EQ(Restore(L"WORKPC\\C:\\Projects", L"anna|0;").code, 402);
  EXPECT_TRUE(fs::exists(destination_.path() / "Projects" / "plan.txt"));
}

TEST_F(VaultRestore, WrongKeyAndEscapingPathsRestoreNothing) {
  LogIn(L"anna", L"anna-pass", L"not the key");
  EXPECT_EQ(Restore(L"C:\\Documents", L"HOMEPC|1|1;").code, -404);
  LogIn(L"anna", L"anna-pass", L"anna-key-2024");
  for (const wchar_t* parent : {L"C:\\..\\..\\..\\ben", L"..", L"C:\\Documents\\.\\Reports"})
    EXPECT_EQ(Restore(parent, L"HOMEPC|1|1;").code, -408) << platform::WideToUtf8(parent);
  EXPECT_EQ(FilesRestored(), 0u);
}

TEST_F(Vault, DeleteRemovesListedItemsAndRefusesEscapes) {
  LogIn(L"anna", L"anna-pass");
  fs::path folder = Exchange("H_delete");
  WriteFileBytes(folder / "InputDelete.txt",
                 "HOMEPC\\C:\\Documents\\Reports\\\r\nWORKPC\\C:\\Projects\\plan.txt\r\n");
  EXPECT_EQ(Ask(6, folder).code, 402);
  folder = Exchange("H_delete");
  WriteFileBytes(folder / "InputDelete.txt",
                 "HOMEPC\\C:\\Documents\\Reports\r\nHOMEPC\\..\\..\\ben\r\nHOMEPC\\\r\n");
  EXPECT_EQ(Ask(6, folder).code, -423);
  EXPECT_TRUE(fs::exists(vault() / "accounts" / "ben" / "account.txt"));

  EXPECT_EQ(Ask(122).code, 402);
  EXPECT_EQ(Read(UserFolder() / "WORKPC" / "Backupfile.txt"),
            Utf16(L"C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt/2/102/03-08-2023 09:30:00/A\r\n"));
  EXPECT_EQ(Read(UserFolder() / "HOMEPC" / "Backupfile.txt").find(Utf16(L"Reports").substr(2)),
            std::string::npos);
}

TEST_F(Vault, RegistrationBindsTheRandomNumberToTheHomeComputer) {
  AppendToVaultFile("accounts/ben/account.txt", "registration = required\n");
  LogIn(L"ben", L"ben-pass");
  EXPECT_EQ(AskRandom(115, L"1234567890").code, -505);
  EXPECT_EQ(AskRandom(5, L"Does not exist").code, -510);
  EXPECT_EQ(AskRandom(5, L"1234567890").code, 404);
  EXPECT_EQ(AskRandom(115, L"1234567890").code, 0);
  EXPECT_NE(Read(vault() / "accounts/ben/account.txt").find("machine-code = 1234567890 BENLAPTOP"),
            std::string::npos);
}

class VaultUpload : public VaultTest {
 protected:
  void SetUp() override {
    VaultTest::SetUp();
    LogIn(L"ben", L"ben-pass");
    local_ = local_folder_.path() / "report \u00e9t\u00e9.txt";
  }
  VaultAnswer Upload(const std::string& bytes) {
    WriteFileBytes(local_, bytes);
    fs::path folder = Exchange("H_upload");
    WriteFileBytes(folder / "ToBackup.txt", Utf16LeFile(platform::FromFsPath(local_) + L"\r\n"));
    return Ask(110, folder);
  }
  std::string Versions() {
    fs::path folder = Exchange("H_versions");
    AskVersions(platform::Utf8ToWide(RemoteFormOf(local_)), folder);
    return Read(folder / "BackupVersion.txt");
  }
  std::string RestoredBytes() {
    TempFolder destination;
    fs::path folder = Exchange("H_restore");
    foundation::WriteUtf16Lines(platform::FromFsPath(folder / "restdestdir.txt"),
                                {L"0", L"4", platform::FromFsPath(destination.path()),
                                 platform::Utf8ToWide(RemoteFormOf(local_))});
    Ask(123, folder);
    return Read(destination.path() / local_.filename());
  }
  TempFolder local_folder_;
  fs::path local_;
};

TEST_F(VaultUpload, EachUploadAddsAVersionTheListingAndRestoreSee) {
  VaultAnswer answer = Upload("first");
  EXPECT_EQ(answer.code, 402);
  EXPECT_EQ(answer.output1, "1\r\n");
  EXPECT_EQ(Upload("second, longer").code, 402);
  EXPECT_EQ(Bars(Versions()), 2);
  EXPECT_EQ(RestoredBytes(), "second, longer");

  // Stored under the names already there, which may differ in case.
  fs::path folder = Exchange("H_list");
  Ask(115, folder);
  const std::wstring line = platform::Utf8ToWide(RemoteFormOf(local_)) + L"/2/14/";
  EXPECT_NE(Lower(WideOfUtf16(Read(folder / "Backupfile.txt"))).find(Lower(line)), std::wstring::npos);
}

TEST_F(VaultUpload, FullQuotaRefusesTheWholeUpload) {
  AppendToVaultFile("accounts/ben/account.txt", "quota = 385\n");  // 379 used
  EXPECT_EQ(Upload("seven b").code, -406);
  EXPECT_EQ(Versions(), "0\r\n");
  EXPECT_EQ(Upload("six b!").code, 402);
}

TEST_F(VaultUpload, CrashMidUploadLeavesThePreviousVersionReadable) {
  ASSERT_EQ(Upload("version one").code, 402);
  AppendToVaultFile("vault.txt", "crash-during-upload = 1\n");
  VaultAnswer crashed = Upload("version two, never complete");
  EXPECT_FALSE(crashed.has_output);
  EXPECT_EQ(crashed.code, 0);  // no result file at all
  EXPECT_EQ(Bars(Versions()), 1);
  EXPECT_EQ(RestoredBytes(), "version one");

  AppendToVaultFile("vault.txt", "crash-during-upload = 0\n");
  EXPECT_EQ(Upload("version two").code, 402);
  EXPECT_EQ(RestoredBytes(), "version two");
}

// The library's own operations against the vault, end to end.
TEST_F(Vault, LibraryLogsInSilentlyAndReadsTheQuota) {
  FakeClock clock;
  RecordingUi ui;
  platform::Services replacement;
  replacement.clock = &clock;
  replacement.ui = &ui;
  platform::ScopedServices seams(replacement);
  LogIn(L"ben", L"ben-pass");
  profile::UpdateUserProfile(L"serverip", L"10.9.9.9");
  operations::clsAPI_Interface api;
  EXPECT_EQ(api.API_AutoReconnect(), 402);
  EXPECT_EQ(profile::GetUserProfile(L"serverip"), L"127.0.0.1");
  double max_size = 0, used = 0;
  EXPECT_EQ(api.API_GetQuota(max_size, used), 0);
  EXPECT_EQ(max_size, 12884901888.0);
  EXPECT_EQ(used, 379.0);
  EXPECT_TRUE(ui.boxes().empty());
}

TEST_F(Vault, RunsAreJournaledAndAScenarioTakesPrecedence) {
  LogIn(L"ben", L"ben-pass");
  Ask(114);
  install_.SetScenario(EngineScenario().On(114).Output(-416));
  EXPECT_EQ(Ask(114).code, -416);
  std::vector<EngineRun> runs = install_.Journal();
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0].note.rfind(L"vault ", 0), 0u);
  EXPECT_TRUE(runs[1].note.empty());
}

TEST_F(Vault, SampleVaultIsNeverMadeOverAnExistingOne) {
  const std::string before = Read(vault() / "accounts/ben/account.txt");
  auto process = platform::CurrentLauncher().Start(
      install_.Program(), L"--make-sample-vault " + platform::FromFsPath(vault()), install_.folder());
  ASSERT_NE(process, nullptr);
  process->Wait(30000);
  EXPECT_EQ(Read(vault() / "accounts/ben/account.txt"), before);
}

}  // namespace
}  // namespace tavrine::testing
