#pragma once
// The state every part of the server shares: the DLL's own handle and the one
// count of live objects and server locks that DllCanUnloadNow reads.
#include <windows.h>

#include <string>

namespace tavrine::com {

HMODULE ModuleHandle() noexcept;
void SetModuleHandle(HMODULE module) noexcept;

// Full path of the DLL ("" when it cannot be read).
std::wstring ModulePath();

void ModuleAddRef() noexcept;
void ModuleRelease() noexcept;
// True while any object, class factory or LockServer lock is alive.
bool ModuleInUse() noexcept;

}  // namespace tavrine::com
