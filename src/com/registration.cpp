#include "com/registration.h"

#include <olectl.h>
#include <oleauto.h>

#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "com/module.h"
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

// Standard automation marshaler: dual interfaces are marshaled from the type library.
constexpr const wchar_t* kAutomationProxyStub = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kThreadingModel = L"Apartment";

struct ClassInfo {
  std::wstring name;            // e.g. UICommands
  std::wstring clsid;           // {...}
  std::wstring interface_name;  // e.g. _UICommands
  std::wstring iid;
};

struct LibraryInfo {
  std::wstring name;
  std::wstring libid_text;
  GUID libid{};
  WORD major = 0;
  WORD minor = 0;
  LCID lcid = 0;
  SYSKIND syskind = SYS_WIN64;
  std::vector<ClassInfo> classes;
};

std::wstring GuidText(const GUID& guid) {
  wchar_t buffer[40] = {};
  StringFromGUID2(guid, buffer, 40);
  return buffer;
}

std::wstring NameOf(ITypeInfo* info) {
  UniqueBstr name;
  if (FAILED(info->GetDocumentation(MEMBERID_NIL, name.put(), nullptr, nullptr, nullptr))) return {};
  return std::wstring(name.view());
}

HRESULT ReadLibrary(ITypeLib* library, LibraryInfo& out) {
  TLIBATTR* attr = nullptr;
  HRESULT hr = library->GetLibAttr(&attr);
  if (FAILED(hr)) return hr;
  out.libid = attr->guid;
  out.major = attr->wMajorVerNum;
  out.minor = attr->wMinorVerNum;
  out.lcid = attr->lcid;
  out.syskind = attr->syskind;
  library->ReleaseTLibAttr(attr);
  out.libid_text = GuidText(out.libid);
  UniqueBstr name;
  hr = library->GetDocumentation(-1, name.put(), nullptr, nullptr, nullptr);
  if (FAILED(hr)) return hr;
  out.name = std::wstring(name.view());

  for (UINT i = 0, count = library->GetTypeInfoCount(); i < count; ++i) {
    ComPtr<ITypeInfo> info;
    if (FAILED(library->GetTypeInfo(i, info.put()))) continue;
    ScopedTypeAttr type(info.get());
    if (!type || type->typekind != TKIND_COCLASS || !(type->wTypeFlags & TYPEFLAG_FCANCREATE)) continue;
    ClassInfo entry;
    entry.name = NameOf(info.get());
    entry.clsid = GuidText(type->guid);
    for (UINT impl = 0; impl < type->cImplTypes; ++impl) {
      INT flags = 0;
      HREFTYPE ref = 0;
      ComPtr<ITypeInfo> target;
      if (FAILED(info->GetImplTypeFlags(impl, &flags)) || !(flags & IMPLTYPEFLAG_FDEFAULT)) continue;
      if (FAILED(info->GetRefTypeOfImplType(impl, &ref)) || FAILED(info->GetRefTypeInfo(ref, target.put())))
        continue;
      ScopedTypeAttr target_type(target.get());
      if (!target_type) continue;
      entry.interface_name = NameOf(target.get());
      entry.iid = GuidText(target_type->guid);
    }
    out.classes.push_back(std::move(entry));
  }
  return S_OK;
}

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
  const std::wstring version = std::to_wstring(library.major) + L"." + std::to_wstring(library.minor);
  for (const ClassInfo& entry : library.classes) {
    const std::wstring prog_id = library.name + L"." + entry.name;
    const std::wstring class_key = L"CLSID\\" + entry.clsid;
    const std::wstring interface_key = L"Interface\\" + entry.iid;
    const struct {
      std::wstring subkey;
      const wchar_t* name;
      std::wstring value;
    } values[] = {
        {class_key, nullptr, prog_id},
        {class_key + L"\\InprocServer32", nullptr, module_path},
        {class_key + L"\\InprocServer32", L"ThreadingModel", kThreadingModel},
        {class_key + L"\\ProgID", nullptr, prog_id},
        {class_key + L"\\TypeLib", nullptr, library.libid_text},
        {class_key + L"\\VERSION", nullptr, version},
        {prog_id, nullptr, prog_id},
        {prog_id + L"\\CLSID", nullptr, entry.clsid},
        {interface_key, nullptr, entry.interface_name},
        {interface_key + L"\\ProxyStubClsid", nullptr, kAutomationProxyStub},
        {interface_key + L"\\ProxyStubClsid32", nullptr, kAutomationProxyStub},
        {interface_key + L"\\TypeLib", nullptr, library.libid_text},
        {interface_key + L"\\TypeLib", L"Version", version},
    };
    for (const auto& value : values) {
      LONG status = SetText(root, value.subkey, value.name, value.value);
      if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
    }
  }
  return S_OK;
}

HRESULT RemoveClasses(HKEY root, const LibraryInfo& library) {
  LONG first_error = ERROR_SUCCESS;
  for (const ClassInfo& entry : library.classes) {
    for (const std::wstring& subkey :
         {L"CLSID\\" + entry.clsid, library.name + L"." + entry.name, L"Interface\\" + entry.iid}) {
      LONG status = DeleteTree(root, subkey);
      if (status != ERROR_SUCCESS && first_error == ERROR_SUCCESS) first_error = status;
    }
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
