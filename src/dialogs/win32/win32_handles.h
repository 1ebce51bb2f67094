#pragma once
#include <windows.h>

#include "platform/win32/unique_owners.h"

namespace tavrine::dialogs::win32 {

// The owners of GDI objects, icons and windows.
using platform::win32::UniqueBitmap;
using platform::win32::UniqueBrush;
using platform::win32::UniqueFont;
using platform::win32::UniqueGdi;
using platform::win32::UniqueIcon;
using platform::win32::UniqueRegion;
using platform::win32::UniqueWindow;

// Screen DCs and window DCs go back with ReleaseDC; memory DCs with DeleteDC.
class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
  ~WindowDc() {
    if (dc_) ReleaseDC(window_, dc_);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  HDC get() const { return dc_; }

 private:
  HWND window_;
  HDC dc_;
};

class MemoryDc {
 public:
  explicit MemoryDc(HDC compatible) : dc_(CreateCompatibleDC(compatible)) {}
  ~MemoryDc() {
    if (dc_) DeleteDC(dc_);
  }
  MemoryDc(const MemoryDc&) = delete;
  MemoryDc& operator=(const MemoryDc&) = delete;
  HDC get() const { return dc_; }

 private:
  HDC dc_;
};

// Selects an object into a DC for a scope and puts the old one back.
class SelectScope {
 public:
  SelectScope(HDC dc, HGDIOBJ object) : dc_(dc), old_(SelectObject(dc, object)) {}
  ~SelectScope() { SelectObject(dc_, old_); }
  SelectScope(const SelectScope&) = delete;
  SelectScope& operator=(const SelectScope&) = delete;

 private:
  HDC dc_;
  HGDIOBJ old_;
};

}  // namespace tavrine::dialogs::win32
