#pragma once
// The one list that ties each class identifier to its default interface and to
// the C++ object behind it. Names, ProgIDs and the rest come from the type
// library.
#include <windows.h>
#include <objbase.h>

#include <cstddef>
#include <span>

namespace tavrine::com {

using CreateFunction = HRESULT (*)(REFIID iid, void** out);

struct ClassEntry {
  const CLSID* clsid;
  const IID* iid;  // the default interface
  CreateFunction create;
};

std::span<const ClassEntry> Classes() noexcept;

// Index into Classes() of the class with this CLSID or default IID; -1 when none.
std::ptrdiff_t FindClassByClsid(REFCLSID clsid) noexcept;
std::ptrdiff_t FindClassByIid(REFIID iid) noexcept;

}  // namespace tavrine::com
