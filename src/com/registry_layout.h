#pragma once
// What registering the server writes below the classes root, read from a type
// library: DllRegisterServer writes it, and the installer's registry table is
// generated from it, so the two cannot drift apart.
#include <windows.h>
#include <oaidl.h>

#include <string>
#include <vector>

namespace tavrine::com {

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
  std::vector<ClassInfo> classes;  // the creatable classes and their default interfaces
};

// One REG_SZ value; an empty name is the key's default value.
struct RegistryText {
  std::wstring key;  // below the classes root
  std::wstring name;
  std::wstring value;
};

HRESULT ReadLibrary(ITypeLib* library, LibraryInfo& out);

// Classes, ProgIDs "<library>.<class>" and interfaces, for the module at module_path.
std::vector<RegistryText> ClassValues(const LibraryInfo& library, const std::wstring& module_path);

// The TypeLib key as the system's type library registration writes it.
std::vector<RegistryText> TypeLibraryValues(const LibraryInfo& library, const std::wstring& module_path,
                                            const std::wstring& help_folder);

// The keys ClassValues writes at the top (each removed with its subtree).
std::vector<std::wstring> ClassKeys(const LibraryInfo& library);

}  // namespace tavrine::com
