#include "platform/module_folder.h"

#include <windows.h>

#include "platform/services.h"

namespace tavrine::platform {

namespace {

std::wstring ModuleFile() {
  HMODULE module = nullptr;
  // The module that holds this code: the DLL when loaded by a COM client.
  if (!GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<LPCWSTR>(&ModuleFile), &module)) {
    module = nullptr;
  }
  std::wstring buffer(MAX_PATH, L'\0');
  while (true) {
    DWORD length = GetModuleFileNameW(module, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0) return {};
    if (length < buffer.size()) {
      buffer.resize(length);
      return buffer;
    }
    buffer.resize(buffer.size() * 2);
  }
}

}  // namespace

std::wstring ModuleFolder() {
  const std::optional<std::wstring>& folder = Current().module_folder;
  if (folder) return *folder;
  std::wstring file = ModuleFile();
  std::size_t slash = file.find_last_of(L"\\/");
  return slash == std::wstring::npos ? std::wstring() : file.substr(0, slash);
}

}  // namespace tavrine::platform
