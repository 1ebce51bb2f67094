#include <windows.h>

#include <vector>

#include "tool_os.h"

namespace tavrine::reftools {

namespace {

std::string Utf8FromWide(const wchar_t* text, int length) {
  if (length == 0) return {};
  int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  if (size > 0) WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

}  // namespace

std::filesystem::path ProgramPath() {
  std::vector<wchar_t> buffer(MAX_PATH);
  for (;;) {
    DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length < buffer.size()) return std::filesystem::path(std::wstring(buffer.data(), length));
    buffer.resize(buffer.size() * 2);
  }
}

std::filesystem::path PathFromUtf8(const std::string& utf8) {
  if (utf8.empty()) return {};
  int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size > 0 ? size : 0), L'\0');
  if (size > 0)
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
  return std::filesystem::path(wide);
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  const std::wstring& wide = path.native();
  return Utf8FromWide(wide.c_str(), static_cast<int>(wide.size()));
}

void ExitAbnormally() {
  TerminateProcess(GetCurrentProcess(), 3);
  ExitProcess(3);
}

std::string ParameterTextFromCommandLine() {
  const wchar_t* p = GetCommandLineW();
  if (*p == L'"') {
    ++p;
    while (*p && *p != L'"') ++p;
    if (*p) ++p;
  } else {
    while (*p && *p != L' ' && *p != L'\t') ++p;
  }
  if (*p == L' ' || *p == L'\t') ++p;
  return Utf8FromWide(p, static_cast<int>(wcslen(p)));
}

}  // namespace tavrine::reftools
