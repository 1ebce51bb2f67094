#pragma once
#include <windows.h>
#include <objbase.h>

#include "com/class_table.h"

namespace tavrine::com {

// DllGetClassObject's work: a class factory for one of the classes of the table.
HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** out) noexcept;

}  // namespace tavrine::com
