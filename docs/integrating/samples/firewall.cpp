// Probe whether the engine can reach the service from this computer.
//
//   firewall.exe
//
// The probe starts the engine (code 116, placeholder credentials) and does not
// wait for it. The engine leaves a marker file "<installation name>Client.txt"
// in the work root when it got through. The probe answers 1 (and removes the
// marker) only when the marker is already there right after the start; else
// it answers 0 and the caller watches for the marker itself. While a marker
// stands, a probe starts nothing and answers 0: remove it after reading it.
//
// Calls: clsAPI_Interface.API_FirewallSettings (UICommands.W_Dummycall is the same call).
#include <string>

#include "sample_support.h"

namespace {

// The library's folder, and in it Configuration.ini and UserName.ini.
std::wstring LibraryFolder() {
  wchar_t module[MAX_PATH] = {};
  GetModuleFileNameW(GetModuleHandleW(L"TavrinEUI.dll"), module, MAX_PATH);
  std::wstring folder = module;
  return folder.substr(0, folder.find_last_of(L'\\') + 1);
}

std::wstring IniValue(const std::wstring& file, const wchar_t* section, const wchar_t* key) {
  wchar_t value[MAX_PATH] = {};
  GetPrivateProfileStringW(section, key, L"", value, MAX_PATH, file.c_str());
  return value;
}

// <work root><ProductInstallationName>Client.txt; the work root is VirtualPath
// of UserName.ini, or the library's folder.
std::wstring MarkerFile() {
  const std::wstring library = LibraryFolder();
  std::wstring root = IniValue(library + L"UserName.ini", L"Registry", L"VirtualPath");
  if (root.empty()) root = library;
  if (root.back() != L'\\') root += L'\\';
  return root + IniValue(library + L"Configuration.ini", L"ProductInfo", L"ProductInstallationName") + L"Client.txt";
}

bool Exists(const std::wstring& file) { return GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES; }

}  // namespace

int wmain() {
  return sample::Run([] {
    auto api = sample::Create<_clsAPI_Interface>(L"TavrinEUI.clsAPI_Interface", IID__clsAPI_Interface);
    const std::wstring marker = MarkerFile();
    DeleteFileW(marker.c_str());  // an old marker would stop the probe from running

    LONG through = 0;
    sample::Check(api->API_FirewallSettings(&through), "API_FirewallSettings");
    for (int waited = 0; through != 1 && waited < 300; ++waited) {  // up to 30 s
      if (Exists(marker)) {
        DeleteFileW(marker.c_str());
        through = 1;
      } else {
        Sleep(100);
      }
    }
    if (through != 1) {
      sample::Say(L"firewall: the engine did not get through in 30 s (blocked, or the engine is missing)");
      return 1;
    }
    sample::Say(L"firewall: the engine got through");
    return 0;
  });
}
