#pragma once
#include <filesystem>
#include <string>

namespace tavrine::platform {

#ifdef _WIN32
inline constexpr wchar_t kPathSeparator = L'\\';
#else
inline constexpr wchar_t kPathSeparator = L'/';
#endif

// Wide text <-> file-system path without going through the C runtime's locale
// (UTF-8 on POSIX, UTF-16 on Windows).
std::filesystem::path ToFsPath(const std::wstring& path);
std::wstring FromFsPath(const std::filesystem::path& path);

// UTF-8 <-> wide, for command lines and POSIX file names.
std::string WideToUtf8(std::wstring_view wide);
std::wstring Utf8ToWide(std::string_view utf8);

}  // namespace tavrine::platform
