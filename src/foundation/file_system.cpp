#include "foundation/file_system.h"

#include <filesystem>
#include <system_error>

#include "platform/path.h"

namespace tavrine::foundation {

namespace fs = std::filesystem;

namespace {

// The file helpers never throw: their callers include clean-up paths, and a
// path that cannot even be converted (no memory) answers like a failed call.
template <class Body>
bool AnswerOrFalse(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return false;
  }
}

}  // namespace

bool FileExists(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    return !path.empty() && fs::is_regular_file(platform::ToFsPath(path), error);
  });
}

bool FolderExists(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    return !path.empty() && fs::is_directory(platform::ToFsPath(path), error);
  });
}

bool CreateFolder(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    fs::create_directory(platform::ToFsPath(path), error);
    return FolderExists(path);
  });
}

bool DeleteFileIfExists(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    if (!FileExists(path)) return true;
    return fs::remove(platform::ToFsPath(path), error) && !error;
  });
}

bool DeleteFileUnforced(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    const fs::perms mode = fs::status(platform::ToFsPath(path), error).permissions();
    constexpr fs::perms kWrite =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (!error && FileExists(path) && (mode & kWrite) == fs::perms::none) return false;
    return DeleteFileIfExists(path);
  });
}

bool DeleteFolderTree(const std::wstring& path) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    if (!FolderExists(path)) return true;
    fs::remove_all(platform::ToFsPath(path), error);
    return !error;
  });
}

bool CopyFileReplacing(const std::wstring& from, const std::wstring& to) noexcept {
  return AnswerOrFalse([&] {
    std::error_code error;
    fs::copy_file(platform::ToFsPath(from), platform::ToFsPath(to),
                  fs::copy_options::overwrite_existing, error);
    return !error;
  });
}

std::wstring JoinPath(const std::wstring& a, const std::wstring& b) {
  if (a.empty()) return b;
  if (a.back() == platform::kPathSeparator) return a + b;
  return a + platform::kPathSeparator + b;
}

}  // namespace tavrine::foundation
