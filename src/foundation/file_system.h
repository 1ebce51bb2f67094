#pragma once
#include <string>

namespace tavrine::foundation {

// Small wrappers over std::filesystem that take the library's wide paths and
// never throw: a failing step reports false.
bool FileExists(const std::wstring& path) noexcept;
bool FolderExists(const std::wstring& path) noexcept;
bool CreateFolder(const std::wstring& path) noexcept;
bool DeleteFileIfExists(const std::wstring& path) noexcept;
// Like DeleteFileIfExists, but a read-only file stays (false), as the shell's
// own delete leaves it; the standard library removes it on POSIX and with MSVC.
bool DeleteFileUnforced(const std::wstring& path) noexcept;
bool DeleteFolderTree(const std::wstring& path) noexcept;
bool CopyFileReplacing(const std::wstring& from, const std::wstring& to) noexcept;

// a + separator + b, without doubling a separator that a already ends with.
std::wstring JoinPath(const std::wstring& a, const std::wstring& b);

}  // namespace tavrine::foundation
