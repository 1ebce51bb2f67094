#pragma once
// Create functions of the six COM classes (the class table's entries).
#include <windows.h>
#include <objbase.h>

namespace tavrine::com {

HRESULT CreateUICommands(REFIID iid, void** out) noexcept;
HRESULT CreateTavrinEenum(REFIID iid, void** out) noexcept;
HRESULT CreateclsAPI_Interface(REFIID iid, void** out) noexcept;
HRESULT CreateclsClient(REFIID iid, void** out) noexcept;
HRESULT CreateCRestore(REFIID iid, void** out) noexcept;
HRESULT CreateCBackup(REFIID iid, void** out) noexcept;

}  // namespace tavrine::com
