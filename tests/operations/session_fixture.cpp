#include "session_fixture.h"

#include "foundation/file_system.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::testing {

namespace {
EngineInstallOptions Options() {
  EngineInstallOptions options;
  options.folder_name = L"install dir";
  options.aliases = {L"TavrinEClsClient.exe"};
  options.configuration_ini =
      "[ProductInfo]\r\nProductNumber=7\r\nProductName=TavrinE\r\n"
      "ProductInstallationName=TavrinETest\r\nProductTreeViewName=TavrinE Backup\r\n"
      "Language=English\r\nProductCaption=TavrinE Online Backup\r\nExeGroup=TavrinE\r\n"
      "[ConnectionInfo]\r\nDomainName=localhost\r\nIPAddress1=127.0.0.1\r\nPort=443\r\n"
      "EngineTimeoutSeconds=20\r\n";
  return options;
}
}  // namespace

SessionTest::SessionTest() : install_(Options()) {}

void SessionTest::SetUp() {
  platform::Services seams;
  seams.clock = &clock_;
  seams.ui = &ui_;
  seams_.emplace(seams);
  foundation::CurrentSettings() = foundation::Settings{};
  ResetProfileStore();
  profile::SetCurrentUserName(L"alice");
  profile::UpdateUserProfile(L"username", L"alice");
  profile::UpdateUserProfile(L"password", L"pw");
  profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
  profile::UpdateUserProfile(L"port", L"443");
}

void SessionTest::TearDown() { ResetProfileStore(); }

std::wstring SessionTest::UserFolder() const {
  return install_.folder() + platform::kPathSeparator + L"TavrinETestalice";
}

std::wstring SessionTest::TempRoot() const {
  return UserFolder() + platform::kPathSeparator + L"Temp";
}

std::wstring SessionTest::CallerFolder(const std::wstring& name) {
  std::wstring folder = TempRoot() + platform::kPathSeparator + name;
  std::filesystem::create_directories(platform::ToFsPath(folder));
  return folder;
}

std::string SessionTest::TraceText() const {
  return ReadFileBytes(install_.path() / "Log" / "TavrinETestUI.txt");
}

}  // namespace tavrine::testing
