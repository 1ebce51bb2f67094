// The four exports and DllMain. Nothing here may throw past the boundary.
#include <windows.h>

#include "com/class_factory.h"
#include "com/module.h"
#include "com/registration.h"
#include "com/type_library.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      tavrine::com::SetModuleHandle(instance);
      DisableThreadLibraryCalls(instance);
      break;
    case DLL_PROCESS_DETACH:
      // On FreeLibrary only: at process exit other DLLs may be gone already.
      if (!reserved) tavrine::com::ReleaseTypeLibraryCache();
      break;
    default:
      break;
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
  return tavrine::com::GetClassFactory(clsid, iid, out);
}

STDAPI DllCanUnloadNow() { return tavrine::com::ModuleInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return tavrine::com::RegisterServer(); }

STDAPI DllUnregisterServer() { return tavrine::com::UnregisterServer(); }

// The exports are called through these pointer types. On x86 an export
// defined without STDAPI and declared by no header seen here would compile,
// link (the .def names it undecorated) and corrupt the caller's stack; the
// calling convention is part of the pointer type, so that stops the build.
using ServerFunction = HRESULT(STDAPICALLTYPE*)();
[[maybe_unused]] constexpr LPFNGETCLASSOBJECT kGetClassObject = &DllGetClassObject;
[[maybe_unused]] constexpr LPFNCANUNLOADNOW kCanUnloadNow = &DllCanUnloadNow;
[[maybe_unused]] constexpr ServerFunction kRegisterServer = &DllRegisterServer;
[[maybe_unused]] constexpr ServerFunction kUnregisterServer = &DllUnregisterServer;
