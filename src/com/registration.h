#pragma once
#include <windows.h>
#include <objbase.h>

namespace tavrine::com {

// DllRegisterServer / DllUnregisterServer. The classes, ProgIDs and interfaces
// are read from the embedded type library. Machine-wide when allowed, else for
// the current user; unregistering clears both.
HRESULT RegisterServer() noexcept;
HRESULT UnregisterServer() noexcept;

}  // namespace tavrine::com
