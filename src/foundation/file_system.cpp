#include "foundation/file_system.h"

#include <filesystem>
#include <system_error>

#include "platform/path.h"

namespace tavrine::foundation {

namespace fs = std::filesystem;

bool FileExists(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(platform::ToFsPath(path), error);
  } catch (...) {
    return false;
  }
}

bool FolderExists(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    return !path.empty() && fs::is_directory(platform::ToFsPath(path), error);
  } catch (...) {
    return false;
  }
}

bool CreateFolder(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    fs::create_directory(platform::ToFsPath(path), error);
    return FolderExists(path);
  } catch (...) {
    return false;
  }
}

bool DeleteFileIfExists(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    if (!FileExists(path)) return true;
    return fs::remove(platform::ToFsPath(path), error) && !error;
  } catch (...) {
    return false;
  }
}

bool DeleteFileUnforced(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    const fs::perms mode = fs::status(platform::ToFsPath(path), error).permissions();
    constexpr fs::perms kWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (!error && FileExists(path) && (mode & kWrite) == fs::perms::none) return false;
    return DeleteFileIfExists(path);
  } catch (...) {
    return false;
  }
}

bool DeleteFolderTree(const std::wstring& path) noexcept {
  try {
    std::error_code error;
    if (!FolderExists(path)) return true;
    fs::remove_all(platform::ToFsPath(path), error);
    return !error;
  } catch (...) {
    return false;
  }
}

bool CopyFileReplacing(const std::wstring& from, const std::wstring& to) noexcept {
  try {
    std::error_code error;
    fs::copy_file(platform::ToFsPath(from), platform::ToFsPath(to),
                  fs::copy_options::overwrite_existing, error);
    return !error;
  } catch (...) {
    return false;
  }
}

std::wstring JoinPath(const std::wstring& a, const std::wstring& b) {
  if (a.empty()) return b;
  if (a.back() == platform::kPathSeparator) return a + b;
  return a + platform::kPathSeparator + b;
}

}  // namespace tavrine::foundation
