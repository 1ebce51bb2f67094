#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/registry.h"

namespace tavrine::profile {

// Value names the store gives a meaning of its own.
inline constexpr const wchar_t* kCurrentUserValue = L"CurrentUser";
inline constexpr const wchar_t* kDefaultUserValue = L"Default User name";

// True for the values kept protected at rest: password, encpassword,
// encpasswordnew and ProxyPass (any case: registry names ignore case).
bool IsProtectedValueName(const std::wstring& name);

// The user profile store of one installation:
//   <root> = Software\Brennick\<installation name without outer backslashes>
//   <root>\CurrentUser, <root>\Default User name   whose profile is active / last user
//   <root>\<user>\<name>                           each user's named values (REG_SZ)
// CurrentUser and Default User name always live in <root>, also when they
// are read or written through Get / Update. Protected values are stored
// character-shifted, then protected with platform::ProtectSecret; reading
// gives the plain text back. Nothing here throws; failures are traced
// without the value's text.
//
// With no current user (or a stored one that IsSafeName refuses), Get gives
// "" and Update writes nothing and returns false: values never fall back to
// <root>, so they cannot land in another user's profile or among the globals.
// Name the user first (SetCurrentUser, or UpdateForUser by name).
class ProfileStore {
 public:
  ProfileStore(std::unique_ptr<platform::Registry> registry, const std::wstring& installation_name);

  // The store of the current thread's installation: HKEY_CURRENT_USER on
  // Windows, ProfileStoreFile() on POSIX; installation name from the loaded
  // settings, else read from Configuration.ini.
  static ProfileStore ForCurrentInstallation();

  // False when the installation name is empty: every read is "", every write false.
  bool available() const { return !root_key_.empty(); }
  const std::wstring& root_key() const { return root_key_; }
  platform::Registry& registry() const { return *registry_; }

  std::wstring CurrentUser() const;
  // "" removes the value; a name IsSafeName refuses is not stored.
  bool SetCurrentUser(const std::wstring& user);
  std::wstring DefaultUser() const;
  bool SetDefaultUser(const std::wstring& user);

  // The current user's values.
  std::wstring Get(const std::wstring& name) const;
  bool Update(const std::wstring& name, const std::wstring& value);
  // A named user's values (the login reads the entered user's before it is current).
  std::wstring GetForUser(const std::wstring& user, const std::wstring& name) const;
  bool UpdateForUser(const std::wstring& user, const std::wstring& name, const std::wstring& value);

  // Users with a profile (subkeys of <root> that IsSafeName accepts).
  std::vector<std::wstring> Users() const;
  // Removes the user's subkey; clears CurrentUser and Default User name when they name it.
  bool DeleteUser(const std::wstring& user);

 private:
  std::wstring UserKey(const std::wstring& user) const;
  std::wstring ReadRootName(const std::wstring& name) const;
  bool WriteRootName(const std::wstring& name, const std::wstring& user, const wchar_t* procedure);

  std::unique_ptr<platform::Registry> registry_;
  std::wstring root_key_;
};

// Software\Brennick\<name>; "" when the name is empty or only separators.
std::wstring RootKeyFor(const std::wstring& installation_name);

// The installation name of this thread: the loaded ProductInstallationName,
// or the one in Configuration.ini when nothing is loaded yet.
std::wstring CurrentInstallationName();

// Where the POSIX store keeps its tree: <work root>HKEY_CURRENT_USER.ini.
std::wstring ProfileStoreFile();

// Shorthands over ProfileStore::ForCurrentInstallation().
std::wstring GetUserProfile(const std::wstring& name);
bool UpdateUserProfile(const std::wstring& name, const std::wstring& value);
std::wstring CurrentUserName();
bool SetCurrentUserName(const std::wstring& user);
std::wstring DefaultUserName();
bool WriteDefaultUser(const std::wstring& user);

}  // namespace tavrine::profile
