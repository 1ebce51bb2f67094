#include "com/registration.h"

#include <olectl.h>
#include <oleauto.h>

#include <string>

#include "com/com_ptr.h"
#include "com/module.h"
#include "com/registry_layout.h"
#include "com/type_library.h"

#if defined(__MINGW32__)
// In the import library but missing from mingw-w64's oleauto.h.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help_dir);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID libid, WORD major, WORD minor, LCID lcid, SYSKIND syskind);
}
#endif

namespace tavrine::com {
namespace {

HRESULT LoadLibraryInfo(LibraryInfo& out, ComPtr<ITypeLib>* keep = nullptr) {
  ComPtr<ITypeLib> library;
  HRESULT hr = GetOwnTypeLibrary(library.put());
  if (FAILED(hr)) return hr;
  hr = ReadLibrary(library.get(), out);
  if (SUCCEEDED(hr) && keep) *keep = library;
  return hr;
}

// Sets a REG_SZ value (name nullptr: the key's default value), creating the key.
LONG SetText(HKEY root, const std::wstring& subkey, const wchar_t* name, const std::wstring& value) {
  UniqueHkey key;
  LONG status = RegCreateKeyExW(root, subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                                nullptr, key.put(), nullptr);
  if (status != ERROR_SUCCESS) return status;
  return RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

LONG DeleteTree(HKEY root, const std::wstring& subkey) {
  LONG status = RegDeleteTreeW(root, subkey.c_str());
  if (status == ERROR_SUCCESS) status = RegDeleteKeyW(root, subkey.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

HRESULT WriteClasses(HKEY root, const LibraryInfo& library, const std::wstring& module_path) {
  for (const RegistryText& value : ClassValues(library, module_path)) {
    LONG status = SetText(root, value.key, value.name.empty() ? nullptr : value.name.c_str(), value.value);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
  }
  return S_OK;
}

HRESULT RemoveClasses(HKEY root, const LibraryInfo& library) {
  LONG first_error = ERROR_SUCCESS;
  for (const std::wstring& subkey : ClassKeys(library)) {
    LONG status = DeleteTree(root, subkey);
    if (status != ERROR_SUCCESS && first_error == ERROR_SUCCESS) first_error = status;
  }
  return HRESULT_FROM_WIN32(first_error);
}

LONG OpenClassesRoot(HKEY hive, UniqueHkey& out) {
  return RegCreateKeyExW(hive, L"Software\\Classes", 0, nullptr, REG_OPTION_NON_VOLATILE,
                         KEY_CREATE_SUB_KEY | KEY_SET_VALUE | KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | DELETE,
                         nullptr, out.put(), nullptr);
}

bool IsAccessDenied(HRESULT hr) {
  return hr == HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED) || hr == TYPE_E_REGISTRYACCESS;
}

HRESULT RegisterFor(HKEY hive, ITypeLib* type_library, const LibraryInfo& library, const std::wstring& path) {
  UniqueHkey root;
  LONG status = OpenClassesRoot(hive, root);
  if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
  HRESULT hr = WriteClasses(root.get(), library, path);
  if (SUCCEEDED(hr)) {
    std::wstring writable_path = path;  // the API takes a non-const string
    hr = hive == HKEY_LOCAL_MACHINE ? RegisterTypeLib(type_library, writable_path.data(), nullptr)
                                    : RegisterTypeLibForUser(type_library, writable_path.data(), nullptr);
  }
  if (FAILED(hr)) RemoveClasses(root.get(), library);
  return hr;
}

}  // namespace

HRESULT RegisterServer() noexcept {
  try {
    LibraryInfo library;
    ComPtr<ITypeLib> type_library;
    HRESULT hr = LoadLibraryInfo(library, &type_library);
    if (FAILED(hr)) return hr;
    const std::wstring path = ModulePath();
    if (path.empty()) return HRESULT_FROM_WIN32(GetLastError());
    hr = RegisterFor(HKEY_LOCAL_MACHINE, type_library.get(), library, path);
    // Without administrator rights the classes go to the user's own root.
    if (IsAccessDenied(hr)) hr = RegisterFor(HKEY_CURRENT_USER, type_library.get(), library, path);
    return FAILED(hr) ? SELFREG_E_CLASS : S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT UnregisterServer() noexcept {
  try {
    LibraryInfo library;
    HRESULT hr = LoadLibraryInfo(library);
    if (FAILED(hr)) return hr;
    HRESULT result = S_OK;
    for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
      UniqueHkey root;
      LONG status = RegOpenKeyExW(hive, L"Software\\Classes", 0,
                                  KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | KEY_SET_VALUE | DELETE, root.put());
      if (status == ERROR_FILE_NOT_FOUND) continue;
      if (status == ERROR_ACCESS_DENIED && hive == HKEY_LOCAL_MACHINE) continue;  // nothing of ours there
      if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
      hr = RemoveClasses(root.get(), library);
      if (FAILED(hr) && !(hive == HKEY_LOCAL_MACHINE && IsAccessDenied(hr))) result = SELFREG_E_CLASS;
    }
    // Not registered in one of the two places is the normal case.
    UnRegisterTypeLib(library.libid, library.major, library.minor, library.lcid, library.syskind);
    UnRegisterTypeLibForUser(library.libid, library.major, library.minor, library.lcid, library.syskind);
    return result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace tavrine::com
