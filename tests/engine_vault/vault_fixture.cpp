#include "engine_vault/vault_fixture.h"

#include <fstream>

#include "engine/engine_run.h"
#include "engine/proxy.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::testing {

namespace fs = std::filesystem;

void VaultTest::SetUp() {
  foundation::CurrentSettings() = foundation::Settings{};
  ResetProfileStore();
  ASSERT_EQ(install_.Run(L"--make-sample-vault " + platform::FromFsPath(vault())),
            platform::WaitOutcome::kExited);
  ASSERT_TRUE(fs::exists(vault() / "vault.txt")) << "sample vault not made";
}

void VaultTest::TearDown() { ResetProfileStore(); }

void VaultTest::LogIn(const std::wstring& user, const std::wstring& password, const std::wstring& key) {
  profile::SetCurrentUserName(user);
  profile::UpdateUserProfile(L"username", user);
  profile::UpdateUserProfile(L"password", password);
  profile::UpdateUserProfile(L"encpasswordnew", key);
  profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
  profile::UpdateUserProfile(L"port", L"443");
  client_.LoadConfigurations();
}

fs::path VaultTest::UserFolder() const { return platform::ToFsPath(client_.UserFolder()); }

fs::path VaultTest::Exchange(const std::string& name) {
  fs::path folder = UserFolder() / "Temp" / (name + "_" + std::to_string(++folders_));
  fs::create_directories(folder);
  return folder;
}

VaultAnswer VaultTest::Ask(int code, const fs::path& folder, const std::wstring& random) {
  client_.WriteDLLInputFileTempFd(platform::FromFsPath(folder), engine::ProxyArguments({}, random));
  return Answer(code, folder);
}

VaultAnswer VaultTest::Answer(int code, const fs::path& folder) {
  const std::wstring text = platform::FromFsPath(folder);
  EXPECT_EQ(install_.Run(engine::EngineParameters(code, text)), platform::WaitOutcome::kExited);
  VaultAnswer answer{false, 0, folder};
  std::wstring description;
  double value = 0;
  client_.ReadDLLOutputFileTempFd(text, answer.has_output, description, value);
  answer.code = static_cast<long long>(value);
  return answer;
}

VaultAnswer VaultTest::AskVersions(const std::wstring& remote, std::string* versions) {
  const fs::path folder = Exchange("H_versions");
  client_.WriteDLLInputVersionFile(platform::FromFsPath(folder),
                                   engine::ProxyArguments({}, L"MACHINECODEREADONLY"), remote);
  VaultAnswer answer = Answer(113, folder);
  if (versions) *versions = ReadFileBytes(folder / "BackupVersion.txt");
  return answer;
}

VaultAnswer VaultTest::Restore(const fs::path& destination, const std::wstring& parent,
                               const std::wstring& hosts) {
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

void VaultTest::AppendToVaultFile(const fs::path& relative, const std::string& lines) const {
  std::ofstream out(vault() / relative, std::ios::binary | std::ios::app);
  out << lines;
}

}  // namespace tavrine::testing
