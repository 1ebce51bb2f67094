#include "com/registry_layout.h"

#include <cwchar>

#include "com/com_ptr.h"

namespace tavrine::com {
namespace {

// Standard automation marshaler: dual interfaces are marshaled from the type library.
constexpr const wchar_t* kAutomationProxyStub = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kThreadingModel = L"Apartment";

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

std::wstring VersionText(const LibraryInfo& library) {
  return std::to_wstring(library.major) + L"." + std::to_wstring(library.minor);
}

std::wstring ProgId(const LibraryInfo& library, const ClassInfo& entry) { return library.name + L"." + entry.name; }

}  // namespace

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

std::vector<RegistryText> ClassValues(const LibraryInfo& library, const std::wstring& module_path) {
  const std::wstring version = VersionText(library);
  std::vector<RegistryText> values;
  for (const ClassInfo& entry : library.classes) {
    const std::wstring prog_id = ProgId(library, entry);
    const std::wstring class_key = L"CLSID\\" + entry.clsid;
    const std::wstring interface_key = L"Interface\\" + entry.iid;
    values.insert(values.end(), {
                                    {class_key, L"", prog_id},
                                    {class_key + L"\\InprocServer32", L"", module_path},
                                    {class_key + L"\\InprocServer32", L"ThreadingModel", kThreadingModel},
                                    {class_key + L"\\ProgID", L"", prog_id},
                                    {class_key + L"\\TypeLib", L"", library.libid_text},
                                    {class_key + L"\\VERSION", L"", version},
                                    {prog_id, L"", prog_id},
                                    {prog_id + L"\\CLSID", L"", entry.clsid},
                                    {interface_key, L"", entry.interface_name},
                                    {interface_key + L"\\ProxyStubClsid", L"", kAutomationProxyStub},
                                    {interface_key + L"\\ProxyStubClsid32", L"", kAutomationProxyStub},
                                    {interface_key + L"\\TypeLib", L"", library.libid_text},
                                    {interface_key + L"\\TypeLib", L"Version", version},
                                });
  }
  return values;
}

std::vector<RegistryText> TypeLibraryValues(const LibraryInfo& library, const std::wstring& module_path,
                                            const std::wstring& help_folder) {
  const std::wstring key = L"TypeLib\\" + library.libid_text + L"\\" + VersionText(library);
  wchar_t lcid[16] = {};
  std::swprintf(lcid, 16, L"%lx", static_cast<unsigned long>(library.lcid));
  const wchar_t* platform = library.syskind == SYS_WIN64 ? L"win64" : L"win32";
  return {
      {key, L"", library.name},
      {key + L"\\" + lcid + L"\\" + platform, L"", module_path},
      {key + L"\\FLAGS", L"", L"0"},
      {key + L"\\HELPDIR", L"", help_folder},
  };
}

std::vector<std::wstring> ClassKeys(const LibraryInfo& library) {
  std::vector<std::wstring> keys;
  for (const ClassInfo& entry : library.classes) {
    keys.push_back(L"CLSID\\" + entry.clsid);
    keys.push_back(ProgId(library, entry));
    keys.push_back(L"Interface\\" + entry.iid);
  }
  return keys;
}

}  // namespace tavrine::com
