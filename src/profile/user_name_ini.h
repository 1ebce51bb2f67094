#pragma once
#include <string>

namespace tavrine::profile {

// UserName.ini beside the library (foundation::UserNameIniPath()), section
// "Registry". Reads are trimmed and "" when the file or key is missing;
// writes report false when the file cannot be written.
inline constexpr const wchar_t* kUserNameIniSection = L"Registry";

std::wstring ReadVirtualPath();
bool WriteVirtualPath(const std::wstring& path);

// The "UserName" key: this computer's user name, used before the stored current user.
std::wstring ReadUserNameIniUserName();
bool WriteUserNameIniUserName(const std::wstring& user);

// "<installation name> client system random number"; "" without an installation name.
std::wstring RandomNumberKey();
std::wstring ReadStoredRandomNumber();
// False without an installation name: the number would be kept under a bare key.
bool WriteStoredRandomNumber(const std::wstring& number);

}  // namespace tavrine::profile
