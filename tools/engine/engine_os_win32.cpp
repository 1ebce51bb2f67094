#include <windows.h>

#include <vector>

#include "engine_os.h"

namespace tavrine::refengine {

namespace {

std::string Utf8FromWide(const wchar_t* text, int length) {
  if (length == 0) return {};
  int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  if (size > 0) WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

// The raw command line after the program name and its one separating blank,
// so the library's parameter text comes back as it was passed.
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

bool RenameReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool WriteProfileValues(const std::filesystem::path&, const std::string& installation,
                        const std::string& user,
                        const std::vector<std::pair<std::string, std::string>>& values) {
  const std::wstring key = PathFromUtf8("Software\\Brennick\\" + installation + "\\" + user).native();
  struct Key {
    HKEY handle = nullptr;
    ~Key() {
      if (handle) RegCloseKey(handle);
    }
  } opened;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                      &opened.handle, nullptr) != ERROR_SUCCESS)
    return false;
  HKEY handle = opened.handle;
  bool ok = true;
  for (const auto& [name, data] : values) {
    const std::wstring wide_name = PathFromUtf8(name).native();
    const std::wstring wide_data = PathFromUtf8(data).native();
    ok = RegSetValueExW(handle, wide_name.c_str(), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(wide_data.c_str()),
                        static_cast<DWORD>((wide_data.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS &&
         ok;
  }
  return ok;
}

void ExitAbnormally() {
  TerminateProcess(GetCurrentProcess(), 3);
  ExitProcess(3);
}

}  // namespace tavrine::refengine

// A GUI-subsystem program, so a hidden start never opens a console window.
int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  // A test engine must never stop a run with an error dialog.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  return tavrine::refengine::RunEngine(tavrine::refengine::ParameterTextFromCommandLine());
}
