#include "profile/profile_store.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/trace_log.h"
#include "platform/secret_protector.h"
#include "profile/character_shift.h"
#include "profile/safe_name.h"

namespace tavrine::profile {

namespace {

constexpr std::wstring_view kBrennickKey = L"Software\\Brennick\\";
constexpr const wchar_t* kStoreFileName = L"HKEY_CURRENT_USER.ini";

constexpr const wchar_t* kReadProcedure = L"ReadProfilefromRegistry";
constexpr const wchar_t* kWriteProcedure = L"WriteProfileToRegistryWithoutDecrypt";
constexpr const wchar_t* kProtectProcedure = L"EncryptUserPassword";
constexpr const wchar_t* kDefaultUserProcedure = L"WriteDefaultUser";

bool IsRootName(const std::wstring& name) {
  return SameUserName(name, kCurrentUserValue) || SameUserName(name, kDefaultUserValue);
}

// Only names go into trace lines, never values: they may be secrets.
// Control characters in a refused name must not forge extra trace lines.
void TraceFailure(const wchar_t* procedure, std::wstring what) {
  for (wchar_t& c : what) {
    if (static_cast<std::uint32_t>(c) < 0x20) c = L'?';
  }
  foundation::TraceException(procedure, what);
}

}  // namespace

bool IsProtectedValueName(const std::wstring& name) {
  static constexpr std::array<std::wstring_view, 4> kProtected = {
      L"password", L"encpassword", L"encpasswordnew", L"ProxyPass"};
  for (std::wstring_view candidate : kProtected) {
    if (SameUserName(name, candidate)) return true;
  }
  return false;
}

std::wstring RootKeyFor(const std::wstring& installation_name) {
  constexpr std::wstring_view kSeparators = L"\\/";
  std::size_t begin = installation_name.find_first_not_of(kSeparators);
  if (begin == std::wstring::npos) return L"";
  std::size_t end = installation_name.find_last_not_of(kSeparators);
  return std::wstring(kBrennickKey) + installation_name.substr(begin, end - begin + 1);
}

std::wstring CurrentInstallationName() {
  const std::wstring& loaded = foundation::LoadedConfiguration().installation_name;
  if (!loaded.empty()) return loaded;
  return foundation::ReadConfigValue(L"ProductInfo", L"ProductInstallationName");
}

std::wstring ProfileStoreFile() {
  return foundation::JoinPath(foundation::ComputeWorkRoot(), kStoreFileName);
}

ProfileStore::ProfileStore(std::unique_ptr<platform::Registry> registry,
                           const std::wstring& installation_name)
    : registry_(std::move(registry)), root_key_(RootKeyFor(installation_name)) {}

ProfileStore ProfileStore::ForCurrentInstallation() {
  return ProfileStore(platform::OpenCurrentUserRegistry(ProfileStoreFile()),
                      CurrentInstallationName());
}

std::wstring ProfileStore::UserKey(const std::wstring& user) const {
  return root_key_ + L"\\" + user;
}

std::wstring ProfileStore::ReadRootName(const std::wstring& name) const {
  if (!available()) return L"";
  std::wstring user = registry_->ReadString(root_key_, name).value_or(L"");
  // A tampered value must not steer folder names out of the work root.
  return IsSafeName(user) ? user : L"";
}

bool ProfileStore::WriteRootName(const std::wstring& name, const std::wstring& user,
                                 const wchar_t* procedure) {
  if (!available()) return false;
  if (user.empty()) return registry_->DeleteValue(root_key_, name);
  if (!IsSafeName(user)) {
    TraceFailure(procedure, L"refused user name " + user);
    return false;
  }
  if (registry_->WriteString(root_key_, name, user)) return true;
  TraceFailure(procedure, L"could not write " + name);
  return false;
}

std::wstring ProfileStore::CurrentUser() const { return ReadRootName(kCurrentUserValue); }

bool ProfileStore::SetCurrentUser(const std::wstring& user) {
  return WriteRootName(kCurrentUserValue, user, kWriteProcedure);
}

std::wstring ProfileStore::DefaultUser() const { return ReadRootName(kDefaultUserValue); }

bool ProfileStore::SetDefaultUser(const std::wstring& user) {
  return WriteRootName(kDefaultUserValue, user, kDefaultUserProcedure);
}

std::wstring ProfileStore::Get(const std::wstring& name) const {
  if (IsRootName(name)) return ReadRootName(name);
  return GetForUser(CurrentUser(), name);
}

bool ProfileStore::Update(const std::wstring& name, const std::wstring& value) {
  if (SameUserName(name, kCurrentUserValue)) return SetCurrentUser(value);
  if (SameUserName(name, kDefaultUserValue)) return SetDefaultUser(value);
  std::wstring user = CurrentUser();
  if (user.empty()) {
    TraceFailure(kWriteProcedure, L"no current user for " + name);
    return false;
  }
  return UpdateForUser(user, name, value);
}

std::wstring ProfileStore::GetForUser(const std::wstring& user, const std::wstring& name) const {
  if (IsRootName(name)) return ReadRootName(name);
  if (!available() || !IsSafeName(user)) return L"";
  std::wstring stored = registry_->ReadString(UserKey(user), name).value_or(L"");
  if (stored.empty() || !IsProtectedValueName(name)) return stored;
  std::optional<std::wstring> shifted = platform::UnprotectSecret(stored);
  if (!shifted) {
    TraceFailure(kReadProcedure, L"cannot unprotect " + name);
    return L"";
  }
  return UnshiftFromStorage(*shifted);
}

bool ProfileStore::UpdateForUser(const std::wstring& user, const std::wstring& name,
                                 const std::wstring& value) {
  if (SameUserName(name, kCurrentUserValue)) return SetCurrentUser(value);
  if (SameUserName(name, kDefaultUserValue)) return SetDefaultUser(value);
  if (!available()) return false;
  if (!IsSafeName(user)) {
    TraceFailure(kWriteProcedure, L"refused user name " + user);
    return false;
  }
  std::wstring stored = value;
  if (IsProtectedValueName(name) && !value.empty()) {
    std::optional<std::wstring> shifted = ShiftForStorage(value);
    std::optional<std::wstring> protected_text =
        shifted ? platform::ProtectSecret(*shifted) : std::nullopt;
    if (!protected_text) {
      TraceFailure(kProtectProcedure, L"cannot protect " + name);
      return false;
    }
    stored = std::move(*protected_text);
  }
  if (registry_->WriteString(UserKey(user), name, stored)) return true;
  TraceFailure(kWriteProcedure, L"could not write " + name);
  return false;
}

std::vector<std::wstring> ProfileStore::Users() const {
  std::vector<std::wstring> users;
  if (!available()) return users;
  for (std::wstring& name : registry_->ListSubkeys(root_key_)) {
    if (IsSafeName(name)) users.push_back(std::move(name));
  }
  return users;
}

bool ProfileStore::DeleteUser(const std::wstring& user) {
  if (!available() || !IsSafeName(user)) return false;
  if (!registry_->DeleteKeyTree(UserKey(user))) return false;
  bool ok = true;
  if (SameUserName(CurrentUser(), user)) ok = SetCurrentUser(L"") && ok;
  if (SameUserName(DefaultUser(), user)) ok = SetDefaultUser(L"") && ok;
  return ok;
}

namespace {

// The shorthands never throw: a profile that cannot be read reads as "" and
// one that cannot be written answers false, and the operation goes on with
// that, as it does when a value is simply missing.
template <class Result, class Body>
Result OrOnFailure(const wchar_t* procedure, Result failed, Body&& body) {
  try {
    ProfileStore store = ProfileStore::ForCurrentInstallation();
    return body(store);
  } catch (...) {
    TraceFailure(procedure, foundation::DescribeCurrentException());
    return failed;
  }
}

}  // namespace

std::wstring GetUserProfile(const std::wstring& name) {
  return OrOnFailure(kReadProcedure, std::wstring(), [&](ProfileStore& store) { return store.Get(name); });
}

bool UpdateUserProfile(const std::wstring& name, const std::wstring& value) {
  return OrOnFailure(kWriteProcedure, false, [&](ProfileStore& store) { return store.Update(name, value); });
}

std::wstring CurrentUserName() {
  return OrOnFailure(kReadProcedure, std::wstring(), [](ProfileStore& store) { return store.CurrentUser(); });
}

bool SetCurrentUserName(const std::wstring& user) {
  return OrOnFailure(kWriteProcedure, false, [&](ProfileStore& store) { return store.SetCurrentUser(user); });
}

std::wstring DefaultUserName() {
  return OrOnFailure(kReadProcedure, std::wstring(), [](ProfileStore& store) { return store.DefaultUser(); });
}

bool WriteDefaultUser(const std::wstring& user) {
  return OrOnFailure(kDefaultUserProcedure, false,
                     [&](ProfileStore& store) { return store.SetDefaultUser(user); });
}

}  // namespace tavrine::profile
