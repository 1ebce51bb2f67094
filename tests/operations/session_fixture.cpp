#include "session_fixture.h"

#include "foundation/shared_state.h"
#include "operations/last_quota.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::testing {

SessionTest::SessionTest() : install_(StandardEngineInstall()) {}

void SessionTest::SetUp() {
  seams_.emplace(platform::Services{.clock = &clock_, .ui = &ui_, .module_folder = {}});
  foundation::LoadedConfiguration() = {};
  foundation::ThreadState() = {};
  operations::LastQuota().reset();
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

std::size_t SessionTest::ExchangeFoldersLeft() const {
  return FoldersIn(platform::ToFsPath(TempRoot()));
}

std::size_t SessionTest::FoldersIn(const std::filesystem::path& root) {
  std::error_code ignored;
  if (!std::filesystem::is_directory(root, ignored)) return 0;
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(root),
                                                std::filesystem::directory_iterator()));
}

std::wstring SessionTest::DeleteList(const std::string& items) const {
  const std::filesystem::path list = install_.path() / "to delete.txt";
  WriteFileBytes(list, items);
  return platform::FromFsPath(list);
}

std::string SessionTest::TraceText() const {
  return ReadFileBytes(install_.path() / "Log" / "TavrinETestUI.txt");
}

}  // namespace tavrine::testing
