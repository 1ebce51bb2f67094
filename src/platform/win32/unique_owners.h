#pragma once
// The Windows handle kinds, each an owner with its own empty value and its
// own way back to the system.
#include <windows.h>
#include <oleauto.h>

#include <new>
#include <string_view>

#include "platform/unique_owner.h"

namespace tavrine::platform::win32 {

// Kernel handles whose "none" is INVALID_HANDLE_VALUE (files, snapshots);
// processes, threads, events and mappings use null.
struct InvalidEmptyHandle {
  using Value = HANDLE;
  static Value Empty() noexcept { return INVALID_HANDLE_VALUE; }
  static void Close(Value handle) noexcept { CloseHandle(handle); }
};

// A window we created and must destroy (tooltips); harmless when its owner
// has destroyed it already.
inline BOOL DestroyLiveWindow(HWND window) noexcept { return IsWindow(window) && DestroyWindow(window); }

using UniqueHandle = UniqueOwner<ZeroEmpty<HANDLE, &CloseHandle>>;
using UniqueFileHandle = UniqueOwner<InvalidEmptyHandle>;
using UniqueHkey = UniqueOwner<ZeroEmpty<HKEY, &RegCloseKey>>;
template <class T>
using UniqueGdi = UniqueOwner<ZeroEmpty<T, &DeleteObject>>;
using UniqueBitmap = UniqueGdi<HBITMAP>;
using UniqueRegion = UniqueGdi<HRGN>;
using UniqueFont = UniqueGdi<HFONT>;
using UniqueBrush = UniqueGdi<HBRUSH>;
using UniqueIcon = UniqueOwner<ZeroEmpty<HICON, &DestroyIcon>>;
using UniqueWindow = UniqueOwner<ZeroEmpty<HWND, &DestroyLiveWindow>>;

// A BSTR, and its text (embedded nulls kept).
class UniqueBstr : public UniqueOwner<ZeroEmpty<BSTR, &SysFreeString>> {
 public:
  using UniqueOwner::UniqueOwner;
  std::wstring_view view() const noexcept {
    return get() ? std::wstring_view(get(), SysStringLen(get())) : std::wstring_view();
  }
};

// A new BSTR holding text (embedded nulls kept); throws std::bad_alloc.
inline UniqueBstr MakeBstr(std::wstring_view text) {
  BSTR value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (!value) throw std::bad_alloc();
  return UniqueBstr(value);
}

}  // namespace tavrine::platform::win32
