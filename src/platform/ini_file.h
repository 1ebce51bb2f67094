#pragma once
#include <string>

namespace tavrine::platform {

// Private-profile files. Windows uses GetPrivateProfileStringA and
// WritePrivateProfileStringA; POSIX keeps their observable rules: case-insensitive
// sections and keys, first match wins, values trimmed, one pair of surrounding
// quotes removed, values cut at 2047 characters.
inline constexpr std::size_t kIniValueMax = 2047;

std::wstring ReadIniString(const std::wstring& section, const std::wstring& key,
                           const std::wstring& file);
bool WriteIniString(const std::wstring& section, const std::wstring& key,
                    const std::wstring& value, const std::wstring& file);

}  // namespace tavrine::platform
