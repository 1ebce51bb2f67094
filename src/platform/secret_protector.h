#pragma once
#include <optional>
#include <string>

namespace tavrine::platform {

// Protects a secret at rest for the current user. Windows: DPAPI
// (CryptProtectData, current user, no UI) with the blob as base64 text, so it
// fits a REG_SZ. POSIX: the text unchanged; the 0600 mode of the file that
// holds it is the protection there.
// nullopt when the protection fails; the input never reaches a log.
std::optional<std::wstring> ProtectSecret(const std::wstring& plain);
// nullopt when the text is not a protected blob of this user.
std::optional<std::wstring> UnprotectSecret(const std::wstring& stored);

}  // namespace tavrine::platform
