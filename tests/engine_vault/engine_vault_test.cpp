// The reference engine in vault mode, run as a real process against the
// sample vault with requests written by the library's own writer.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cwctype>
#include <fstream>
#include <utility>

#include "contract/cls_client.h"
#include "engine/engine_run.h"
#include "engine/proxy.h"
#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "foundation/text_file.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/engine_harness.h"
#include "support/install_folder.h"
#include "support/temp_folder.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

// What one engine run left in its exchange folder.
struct VaultAnswer {
  bool has_output = false;  // DLLOutput.txt was read (else DLLOutputInfo.txt or nothing)
  long long code = 0;
  fs::path folder;  // the exchange folder
};

// An install folder with the sample vault beside the engine (made by the
// engine itself), and a logged-in profile whose requests the library's own
// writer produces.
class Vault : public ::testing::Test {
 protected:
  Vault() : install_(StandardEngineInstall()) {}
  void SetUp() override {
    foundation::LoadedConfiguration() = {};
    foundation::ThreadState() = {};
    ResetProfileStore();
    ASSERT_EQ(install_.Run(L"--make-sample-vault " + platform::FromFsPath(vault())),
              platform::WaitOutcome::kExited);
    ASSERT_TRUE(fs::exists(vault() / "vault.txt")) << "sample vault not made";
  }
  void TearDown() override { ResetProfileStore(); }

  // The profile the library sends: user, password, encryption password.
  void LogIn(const std::wstring& user, const std::wstring& password, const std::wstring& key = L"") {
    profile::SetCurrentUserName(user);
    profile::UpdateUserProfile(L"username", user);
    profile::UpdateUserProfile(L"password", password);
    profile::UpdateUserProfile(L"encpasswordnew", key);
    profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
    profile::UpdateUserProfile(L"port", L"443");
    client_.LoadConfigurations();
  }
  // A fresh exchange folder below the user folder's Temp.
  fs::path Exchange(const std::string& name) {
    fs::path folder = UserFolder() / "Temp" / (name + "_" + std::to_string(++folders_));
    fs::create_directories(folder);
    return folder;
  }
  // Runs the engine with `code` on `folder`, waits for it to end and reads the result.
  VaultAnswer Answer(int code, const fs::path& folder) {
    const std::wstring text = platform::FromFsPath(folder);
    EXPECT_EQ(install_.Run(engine::EngineParameters(code, text)), platform::WaitOutcome::kExited);
    VaultAnswer answer{false, 0, folder};
    std::wstring description;
    double value = 0;
    client_.ReadDLLOutputFileTempFd(text, answer.has_output, description, value);
    answer.code = static_cast<long long>(value);
    return answer;
  }
  // Writes the 12-line request carrying `random`, runs the engine, reads the result.
  VaultAnswer Ask(int code, const fs::path& folder,
                  const std::wstring& random = L"MACHINECODEREADONLY") {
    client_.WriteDLLInputFileTempFd(platform::FromFsPath(folder), engine::ProxyArguments({}, random));
    return Answer(code, folder);
  }
  VaultAnswer Ask(int code) { return Ask(code, Exchange("H_" + std::to_string(code))); }
  // The 13-line versions request for a remote file; `versions` gets BackupVersion.txt.
  VaultAnswer AskVersions(const std::wstring& remote, std::string& versions) {
    const fs::path folder = Exchange("H_versions");
    client_.WriteDLLInputVersionFile(platform::FromFsPath(folder),
                                     engine::ProxyArguments({}, L"MACHINECODEREADONLY"), remote);
    VaultAnswer answer = Answer(113, folder);
    versions = ReadFileBytes(folder / "BackupVersion.txt");
    return answer;
  }
  // A restore request (restdestdir.txt, and MPC.ini unless `hosts` is empty).
  VaultAnswer Restore(const fs::path& destination, const std::wstring& parent,
                      const std::wstring& hosts = L"") {
    const fs::path folder = Exchange("H_restore");
    foundation::WriteUtf16Lines(platform::FromFsPath(folder / "restdestdir.txt"),
                                {L"0", L"4", platform::FromFsPath(destination), parent});
    if (!hosts.empty()) {
      const std::wstring mpc = platform::FromFsPath(folder / "MPC.ini");
      platform::WriteIniString(L"MPC", L"Hosts", hosts, mpc);
      platform::WriteIniString(L"MPC", L"HostCount", L"1", mpc);
    }
    return Ask(123, folder);
  }
  // Appends "key = value" lines (later lines win) to a vault file.
  void AppendToVaultFile(const fs::path& relative, const std::string& lines) const {
    std::ofstream(vault() / relative, std::ios::binary | std::ios::app) << lines;
  }
  fs::path vault() const { return install_.path() / "vault"; }
  fs::path UserFolder() const { return platform::ToFsPath(client_.UserFolder()); }

  EngineInstall install_;
  contract::clsClient client_;
  int folders_ = 0;
};

// Sample file contents: version n is n lines "<path> version n line i".
std::string SampleText(const std::string& path, int version) {
  std::string text;
  for (int i = 1; i <= version; ++i)
    text += path + " version " + std::to_string(version) + " line " + std::to_string(i) + "\r\n";
  return text;
}

long Bars(const std::string& text) { return static_cast<long>(std::count(text.begin(), text.end(), '|')); }

std::wstring Lower(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(c));
  return text;
}

// One request per row from the account the row logs in: the service's code
// (successes in DLLOutput.txt, failures in DLLOutputInfo.txt) and the bytes
// of one more file (DLLOutput1.txt unless named).
TEST_F(Vault, EachRequestIsAnsweredForItsAccount) {
  struct Row {
    int code;
    long long expected;
    const wchar_t* user;
    const wchar_t* password;
    const wchar_t* key = L"";
    const char* bytes = "";
    const char* file = "DLLOutput1.txt";
    std::pair<const char*, const char*> append = {};  // vault file, line appended first
  } rows[] = {
      // Credentials: the user name ignores case, the password does not.
      {114, 402, L"ben", L"ben-pass", L"", "379\r\n12884901888\r\n", "Quota.txt"},  // 41 + 82 + 256
      {114, -401, L"nobody", L"x", L"", "-401\r\nInvalid username\r\n", "DLLOutputInfo.txt"},
      {114, 402, L"BEN", L"ben-pass"}, {114, -403, L"ben", L"Ben-pass"}, {116, -403, L"ben", L""},
      {116, -401, L"nobody", L"ben-pass"}, {119, -400, L"ben", L"wrong"},
      {110, -403, L"ben", L"wrong"}, {123, -403, L"ben", L"wrong"},
      // Encryption status: private, default, none chosen yet.
      {110, 902, L"anna", L"anna-pass"}, {110, 901, L"ben", L"ben-pass"},
      {110, 900, L"dora", L"dora-pass"},
      // Session completion checks a private key only.
      {111, 402, L"anna", L"anna-pass", L"anna-key-2024"},
      {111, -404, L"anna", L"anna-pass", L"anna-key-2025"},
      {111, -404, L"anna", L"anna-pass", L""},
      {111, 402, L"ben", L"ben-pass", L"anything"},
      // Login reports the server address and port.
      {116, 402, L"ben", L"ben-pass", L"", "127.0.0.1\r\n443\r\n"},
      // An email address resolves to user names.
      {117, 402, L"ben@example.com", L"not checked", L"", "ben|dora\r\n"},
      {117, 402, L"ANNA@example.com", L"not checked", L"", "anna\r\n"},
      {117, -512, L"nobody@example.com", L"not checked"},
      // The first session sets the chosen key; a key differing only by its accent is another.
      {111, 402, L"dora", L"dora-pass", L"dora secret \u00e9"}, {110, 902, L"dora", L"dora-pass"},
      {111, -404, L"dora", L"dora-pass", L"dora secret e"},
      // Account states and maintenance, appended last as they stay.
      {116, -507, L"ben", L"ben-pass", L"", "", "DLLOutput1.txt",
       {"accounts/ben/account.txt", "status = closed\n"}},
      {116, -506, L"dora", L"dora-pass", L"", "", "DLLOutput1.txt",
       {"accounts/dora/account.txt", "status = not-activated\n"}},
      {117, -511, L"dora", L"dora-pass", L"", "", "DLLOutput1.txt",
       {"vault.txt", "maintenance = yes\n"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::Message()
                 << row.code << " " << row.user << " " << row.password << " " << row.key);
    if (row.append.first) AppendToVaultFile(row.append.first, row.append.second);
    LogIn(row.user, row.password, row.key);
    VaultAnswer answer = Ask(row.code);
    EXPECT_EQ(answer.code, row.expected);
    EXPECT_EQ(answer.has_output, row.expected > 0);
    EXPECT_EQ(ReadFileBytes(answer.folder / row.file), row.bytes);
    if (row.expected < 0) {
      EXPECT_FALSE(fs::exists(answer.folder / "Quota.txt"));
    }
    if (row.code == 117) {
      // The library reads the names from the address's profile.
      std::string names = row.bytes;
      if (!names.empty()) names.resize(names.size() - 2);
      EXPECT_EQ(
          profile::ProfileStore::ForCurrentInstallation().GetForUser(row.user, L"InteractiveLists"),
          platform::Utf8ToWide(names));
    }
  }
  // Dora's key is kept only as a salted digest.
  EXPECT_EQ(ReadFileBytes(vault() / "accounts/dora/account.txt").find("dora secret"), std::string::npos);
}

TEST_F(Vault, ListingsByteForByteOnePerComputerWithTheMachineList) {
  LogIn(L"anna", L"anna-pass");
  EXPECT_EQ(Ask(122).code, 402);
  EXPECT_EQ(profile::GetUserProfile(L"Count"), L"2");
  EXPECT_EQ(profile::GetUserProfile(L"List"), L"HOMEPC|1|1;WORKPC|2|1;");
  EXPECT_EQ(ReadFileBytes(UserFolder() / "WORKPC" / "Backupfile.txt"),
            Utf16LeFile(L"C:\\Projects\\plan.txt/4/156/02-28-2023 09:30:00/A\r\n"
                  L"C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt/2/102/03-08-2023 09:30:00/A\r\n"));
  EXPECT_TRUE(fs::exists(UserFolder() / "HOMEPC" / "Backupfile.txt"));
  EXPECT_FALSE(fs::exists(UserFolder() / "Backupfile.txt"));

  LogIn(L"ben", L"ben-pass");
  EXPECT_EQ(Ask(119).code, 402);
  EXPECT_EQ(profile::GetUserProfile(L"Count"), L"0");
  EXPECT_EQ(profile::GetUserProfile(L"List"), L"");
  EXPECT_EQ(Ask(122).code, 402);
  EXPECT_TRUE(fs::exists(UserFolder() / "Backupfile.txt"));
  VaultAnswer list = Ask(115);
  EXPECT_EQ(list.code, 0);
  EXPECT_EQ(ReadFileBytes(list.folder / "Backupfile.txt"),
            Utf16LeFile(L"C:\\Users\\ben\\notes.txt/2/82/01-17-2023 09:30:00/A\r\n"
                        L"C:\\Users\\ben\\Pictures\\cat.bin/1/256/01-26-2023 09:30:00/A\r\n"));

  LogIn(L"dora", L"dora-pass");
  list = Ask(115);
  EXPECT_EQ(list.code, 0);
  EXPECT_FALSE(fs::exists(list.folder / "Backupfile.txt")) << "an empty backup has no listing";
}

TEST_F(Vault, VersionsOfAFile) {
  LogIn(L"anna", L"anna-pass");
  struct Row {
    const wchar_t* remote;
    long long code;
    std::size_t versions;
    const char* text = nullptr;  // the whole BackupVersion.txt, where given
  } rows[] = {
      {L"HOMEPC\\C:\\Documents\\Reports\\2023\\Q1 report.txt", 402, 3,
       "1/01-16-2023 09:30:00/01-16-2023 10:30:00/58|2/01-17-2023 09:30:00/01-17-2023 10:30:00/116|"
       "3/01-18-2023 09:30:00/01-18-2023 10:30:00/174|\r\n"},
      {L"WORKPC\\C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt", 402, 2},
      {L"workpc\\c:\\projects\\PLAN.TXT", 402, 4},
      {L"HOMEPC\\C:\\Projects\\plan.txt", -408, 0},  // on the other computer only
      {L"HOMEPC\\C:\\Documents", -408, 0},           // a folder has no versions
      {L"HOMEPC\\C:\\Documents\\..\\..\\..\\..\\ben\\computers\\BENLAPTOP\\C:\\Users\\ben\\notes.txt", -408, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(platform::WideToUtf8(row.remote));
    std::string text;
    EXPECT_EQ(AskVersions(row.remote, text).code, row.code);
    EXPECT_EQ(static_cast<std::size_t>(Bars(text)), row.versions);
    if (row.text || row.versions == 0) {
      EXPECT_EQ(text, row.text ? row.text : "0\r\n");
    }
  }
}

TEST_F(Vault, RestoreOfOneComputerLandsUnderItsNameWithTheLatestVersionsNotForAWrongKey) {
  TempFolder destination;
  const fs::path to = destination.path();
  const auto files_restored = [&] {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(to)) count += entry.is_regular_file();
    return count;
  };
  LogIn(L"anna", L"anna-pass", L"not the key");
  EXPECT_EQ(Restore(to, L"C:\\Documents", L"HOMEPC|1|1;").code, -404);
  LogIn(L"anna", L"anna-pass", L"anna-key-2024");
  for (const wchar_t* parent : {L"C:\\..\\..\\..\\ben", L"..", L"C:\\Documents\\.\\Reports"})
    EXPECT_EQ(Restore(to, parent, L"HOMEPC|1|1;").code, -408) << platform::WideToUtf8(parent);
  EXPECT_EQ(files_restored(), 0u);

  EXPECT_EQ(Restore(to, L"C:\\Documents", L"HOMEPC|1|1;").code, 402);
  const fs::path report = to / "Documents" / "Reports" / "2023" / "Q1 report.txt";
  EXPECT_EQ(ReadFileBytes(report), SampleText("C:\\Documents\\Reports\\2023\\Q1 report.txt", 3));
  EXPECT_EQ(files_restored(), 3u);
  EXPECT_TRUE(fs::exists(to / "Documents" / platform::ToFsPath(L"\u0424\u043e\u0442\u043e") /
                         platform::ToFsPath(L"\u043b\u0435\u0442\u043e.txt")));
  auto written = std::chrono::file_clock::to_sys(fs::last_write_time(report));
  EXPECT_EQ(std::chrono::floor<std::chrono::seconds>(written).time_since_epoch().count(),
            1674034200);  // 01-18-2023 09:30:00 UTC

  // The computer comes from MPC.ini or the leading name.
  EXPECT_EQ(Restore(to, L"C:\\Projects\\plan.txt", L"WORKPC|2|1;").code, 402);
  EXPECT_EQ(ReadFileBytes(to / "plan.txt"), SampleText("C:\\Projects\\plan.txt", 4));
  EXPECT_EQ(Restore(to, L"C:\\Projects\\plan.txt", L"HOMEPC|1|1;").code, -408);
  EXPECT_EQ(Restore(to, L"WORKPC\\C:\\Projects", L"anna|0;").code, 402);
  EXPECT_TRUE(fs::exists(to / "Projects" / "plan.txt"));
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
  EXPECT_EQ(ReadFileBytes(UserFolder() / "WORKPC" / "Backupfile.txt"),
            Utf16LeFile(L"C:\\Projects\\\u65e5\u672c\u8a9e\\\u30e1\u30e2.txt"
                        L"/2/102/03-08-2023 09:30:00/A\r\n"));
  EXPECT_EQ(Utf16LeText(ReadFileBytes(UserFolder() / "HOMEPC" / "Backupfile.txt")).find(L"Reports"),
            std::wstring::npos);
}

TEST_F(Vault, RegistrationBindsTheRandomNumberToTheHomeComputer) {
  AppendToVaultFile("accounts/ben/account.txt", "registration = required\n");
  LogIn(L"ben", L"ben-pass");
  EXPECT_EQ(Ask(115, Exchange("H_reg"), L"1234567890").code, -505);
  EXPECT_EQ(Ask(5, Exchange("H_reg"), L"Does not exist").code, -510);
  EXPECT_EQ(Ask(5, Exchange("H_reg"), L"1234567890").code, 404);
  EXPECT_EQ(Ask(115, Exchange("H_reg"), L"1234567890").code, 0);
  EXPECT_NE(ReadFileBytes(vault() / "accounts/ben/account.txt").find("machine-code = 1234567890 BENLAPTOP"),
            std::string::npos);
}

TEST_F(Vault, EachUploadAddsAVersionButAFullQuotaOrACrashMidUploadLeavesThePreviousOne) {
  LogIn(L"ben", L"ben-pass");
  TempFolder local_folder;
  const fs::path local = local_folder.path() / "report \u00e9t\u00e9.txt";
  const auto upload = [&](const std::string& bytes) {
    WriteFileBytes(local, bytes);
    fs::path folder = Exchange("H_upload");
    WriteFileBytes(folder / "ToBackup.txt", Utf16LeFile(platform::FromFsPath(local) + L"\r\n"));
    return Ask(110, folder);
  };
  const auto versions = [&] {
    std::string text;
    AskVersions(RemoteForm(local), text);
    return text;
  };
  const auto restored_bytes = [&] {
    TempFolder destination;
    Restore(destination.path(), RemoteForm(local));
    return ReadFileBytes(destination.path() / local.filename());
  };
  AppendToVaultFile("accounts/ben/account.txt", "quota = 385\n");  // 379 used
  EXPECT_EQ(upload("seven b").code, -406);
  EXPECT_EQ(versions(), "0\r\n");
  VaultAnswer answer = upload("six b!");
  ASSERT_EQ(answer.code, 402);
  EXPECT_EQ(ReadFileBytes(answer.folder / "DLLOutput1.txt"), "1\r\n");
  AppendToVaultFile("accounts/ben/account.txt", "quota = 100000\n");
  // Stored under the names already there, which may differ in case.
  const std::wstring listing = Utf16LeText(ReadFileBytes(Ask(115).folder / "Backupfile.txt"));
  EXPECT_NE(Lower(listing).find(Lower(RemoteForm(local) + L"/1/6/")), std::wstring::npos);

  AppendToVaultFile("vault.txt", "crash-during-upload = 1\n");
  VaultAnswer crashed = upload("version two, never complete");
  EXPECT_FALSE(crashed.has_output);
  EXPECT_EQ(crashed.code, 0);  // no result file at all
  EXPECT_EQ(Bars(versions()), 1);
  EXPECT_EQ(restored_bytes(), "six b!");

  AppendToVaultFile("vault.txt", "crash-during-upload = 0\n");
  EXPECT_EQ(upload("version two").code, 402);
  EXPECT_EQ(Bars(versions()), 2);
  EXPECT_EQ(restored_bytes(), "version two");
}

TEST_F(Vault, RunsAreJournaledAScenarioTakesPrecedenceAndTheSampleIsNotRemade) {
  LogIn(L"ben", L"ben-pass");
  Ask(114);
  install_.SetScenario(EngineScenario().On(114).Output(-416));
  EXPECT_EQ(Ask(114).code, -416);
  std::vector<EngineRun> runs = install_.Journal();
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0].note.rfind(L"vault ", 0), 0u);
  EXPECT_TRUE(runs[1].note.empty());
  // The sample vault is never made over an existing one.
  const std::string before = ReadFileBytes(vault() / "accounts/ben/account.txt");
  install_.Run(L"--make-sample-vault " + platform::FromFsPath(vault()));
  EXPECT_EQ(ReadFileBytes(vault() / "accounts/ben/account.txt"), before);
}

}  // namespace
}  // namespace tavrine::testing
