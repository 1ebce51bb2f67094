#pragma once
// A plain-text listing of a type library: every type, method, parameter,
// DISPID and record field, one line each, stable enough to diff.
#include <oaidl.h>

#include <string>

namespace tavrine::tlbdump {

// The listing of the library (lines end with "\n").
std::string DumpTypeLibrary(ITypeLib* library);

// Loads the type library embedded in (or stored as) `path` without registering
// it and dumps it; on failure the listing is one line naming the HRESULT.
std::string DumpTypeLibraryFile(const std::wstring& path);

}  // namespace tavrine::tlbdump
