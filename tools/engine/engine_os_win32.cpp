#include <windows.h>

#include "engine_os.h"

namespace tavrine::refengine {

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

}  // namespace tavrine::refengine

// A GUI-subsystem program, so a hidden start never opens a console window.
int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  // A test engine must never stop a run with an error dialog.
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  return tavrine::refengine::RunEngine(tavrine::reftools::ParameterTextFromCommandLine());
}
