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
