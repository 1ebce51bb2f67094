#pragma once
// The DLL's own embedded type library and one cached ITypeInfo per interface,
// loaded on first use and shared by every object of the process.
#include <oaidl.h>

namespace tavrine::com {

// Both return an AddRef'd pointer.
HRESULT GetOwnTypeLibrary(ITypeLib** out) noexcept;
HRESULT GetInterfaceTypeInfo(REFIID iid, ITypeInfo** out) noexcept;

// Drops the cache (DLL unload).
void ReleaseTypeLibraryCache() noexcept;

}  // namespace tavrine::com
