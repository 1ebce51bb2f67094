#include "platform/path.h"

#include <windows.h>

#include <climits>

namespace tavrine::platform {

std::filesystem::path ToFsPath(const std::wstring& path) { return std::filesystem::path(path); }

std::wstring FromFsPath(const std::filesystem::path& path) { return path.native(); }

std::string WideToUtf8(std::wstring_view wide) {
  if (wide.empty() || wide.size() > INT_MAX) return {};
  int size = static_cast<int>(wide.size());
  // Surrogate pairs become one 4-byte sequence; a lone surrogate becomes U+FFFD.
  int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  if (length <= 0) return {};
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), length, nullptr, nullptr);
  return utf8;
}

std::wstring Utf8ToWide(std::string_view utf8) {
  if (utf8.empty() || utf8.size() > INT_MAX) return {};
  int size = static_cast<int>(utf8.size());
  int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
  if (length <= 0) return {};
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), length);
  return wide;
}

}  // namespace tavrine::platform
