#include "engine_vault/vault_fixture.h"

#include <fstream>

#include "engine/proxy.h"
#include "foundation/settings.h"
#include "platform/path.h"
#include "platform/process.h"
#include "platform/services.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::testing {

namespace fs = std::filesystem;

namespace {

// Far above a healthy run even under Wine.
constexpr std::uint32_t kRunLimitMs = 30000;

EngineInstallOptions Options() {
  EngineInstallOptions options;
  options.folder_name = L"install dir";
  options.aliases = {L"TavrinEClsClient.exe"};  // the name the quota operation starts
  options.configuration_ini =
      "[ProductInfo]\r\nProductNumber=7\r\nProductName=TavrinE\r\n"
      "ProductInstallationName=TavrinETest\r\nProductTreeViewName=TavrinE Backup\r\n"
      "Language=English\r\nProductCaption=TavrinE Online Backup\r\nExeGroup=TavrinE\r\n"
      "[ConnectionInfo]\r\nDomainName=localhost\r\nIPAddress1=127.0.0.1\r\nPort=443\r\n"
      "EngineTimeoutSeconds=20\r\n";
  return options;
}

void Launch(const EngineInstall& install, const std::wstring& parameters) {
  auto process = platform::CurrentLauncher().Start(install.Program(), parameters, install.folder());
  ASSERT_NE(process, nullptr) << "engine did not start";
  if (process->Wait(kRunLimitMs) == platform::WaitOutcome::kStillRunning) {
    process->Terminate(1);
    FAIL() << "engine still running after " << kRunLimitMs << " ms";
  }
}

}  // namespace

std::string Read(const fs::path& file) {
  std::error_code ec;
  return fs::exists(file, ec) ? ReadFileBytes(file) : std::string();
}

std::string Utf16(const std::wstring& text) {
  std::string bytes = Utf16LeFile(text);
  return bytes;
}

VaultTest::VaultTest() : install_(Options()) {}

void VaultTest::SetUp() {
  foundation::CurrentSettings() = foundation::Settings{};
  ResetProfileStore();
  Launch(install_, L"--make-sample-vault " + platform::FromFsPath(vault()));
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

void VaultTest::RunEngine(int code, const fs::path& folder) {
  Launch(install_, L" " + std::to_wstring(code) + L"<" + platform::FromFsPath(folder) + L">");
}

static VaultAnswer ReadAnswer(engine::clsClient& client, const fs::path& folder) {
  VaultAnswer answer;
  std::wstring description;
  double value = 0;
  client.ReadDLLOutputFileTempFd(platform::FromFsPath(folder), answer.has_output, description, value);
  answer.code = static_cast<long long>(value);
  answer.output1 = Read(folder / "DLLOutput1.txt");
  return answer;
}

VaultAnswer VaultTest::Ask(int code, const fs::path& folder, const std::wstring& random) {
  client_.WriteDLLInputFileTempFd(platform::FromFsPath(folder), engine::ProxyArguments({}, random));
  RunEngine(code, folder);
  return ReadAnswer(client_, folder);
}

VaultAnswer VaultTest::AskRandom(int code, const std::wstring& random) {
  return Ask(code, Exchange("H_" + std::to_string(code)), random);
}

VaultAnswer VaultTest::AskVersions(const std::wstring& remote, const fs::path& folder) {
  client_.WriteDLLInputVersionFile(platform::FromFsPath(folder),
                                   engine::ProxyArguments({}, L"MACHINECODEREADONLY"), remote);
  RunEngine(113, folder);
  return ReadAnswer(client_, folder);
}

void VaultTest::AppendToVaultFile(const fs::path& relative, const std::string& lines) const {
  std::ofstream out(vault() / relative, std::ios::binary | std::ios::app);
  out << lines;
}

}  // namespace tavrine::testing
