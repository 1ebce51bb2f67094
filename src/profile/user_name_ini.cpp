#include "profile/user_name_ini.h"

#include "foundation/configuration.h"
#include "foundation/text_util.h"
#include "platform/ini_file.h"
#include "profile/profile_store.h"

namespace tavrine::profile {

namespace {

std::wstring ReadKey(const std::wstring& key) {
  return foundation::Trim(
      platform::ReadIniString(kUserNameIniSection, key, foundation::UserNameIniPath()));
}

bool WriteKey(const std::wstring& key, const std::wstring& value) {
  return platform::WriteIniString(kUserNameIniSection, key, value,
                                  foundation::UserNameIniPath());
}

}  // namespace

std::wstring ReadVirtualPath() { return ReadKey(L"VirtualPath"); }
bool WriteVirtualPath(const std::wstring& path) { return WriteKey(L"VirtualPath", path); }

std::wstring ReadUserNameIniUserName() { return ReadKey(L"UserName"); }
bool WriteUserNameIniUserName(const std::wstring& user) { return WriteKey(L"UserName", user); }

std::wstring RandomNumberKey() {
  std::wstring installation = CurrentInstallationName();
  if (installation.empty()) return L"";
  return installation + L" client system random number";
}

std::wstring ReadStoredRandomNumber() {
  std::wstring key = RandomNumberKey();
  return key.empty() ? L"" : ReadKey(key);
}

bool WriteStoredRandomNumber(const std::wstring& number) {
  std::wstring key = RandomNumberKey();
  return !key.empty() && WriteKey(key, number);
}

}  // namespace tavrine::profile
