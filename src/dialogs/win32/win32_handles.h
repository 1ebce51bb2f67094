#pragma once
#include <windows.h>

#include <utility>

namespace tavrine::dialogs::win32 {

// How each kind of handle is given back.
struct GdiObjectFree {
  void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
struct IconFree {
  void operator()(HICON icon) const { DestroyIcon(icon); }
};

// One owner per handle kind; Free on destruction.
template <class T, class Free>
class UniqueObject {
 public:
  UniqueObject() = default;
  explicit UniqueObject(T object) : object_(object) {}
  ~UniqueObject() { Reset(); }
  UniqueObject(UniqueObject&& other) noexcept : object_(other.Release()) {}
  UniqueObject& operator=(UniqueObject&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  UniqueObject(const UniqueObject&) = delete;
  UniqueObject& operator=(const UniqueObject&) = delete;

  T get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // For calls that take ownership (SetWindowRgn on success).
  T Release() { return std::exchange(object_, nullptr); }
  void Reset(T object = nullptr) {
    if (object_) Free()(object_);
    object_ = object;
  }

 private:
  T object_ = nullptr;
};

template <class T>
using UniqueGdi = UniqueObject<T, GdiObjectFree>;
using UniqueBitmap = UniqueGdi<HBITMAP>;
using UniqueRegion = UniqueGdi<HRGN>;
using UniqueFont = UniqueGdi<HFONT>;
using UniqueBrush = UniqueGdi<HBRUSH>;
using UniqueIcon = UniqueObject<HICON, IconFree>;

// A window we created and must destroy (tooltips); harmless when the owner
// has destroyed it already.
class UniqueWindow {
 public:
  UniqueWindow() = default;
  explicit UniqueWindow(HWND window) : window_(window) {}
  ~UniqueWindow() { Reset(); }
  UniqueWindow(UniqueWindow&& other) noexcept : window_(std::exchange(other.window_, nullptr)) {}
  UniqueWindow& operator=(UniqueWindow&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.window_, nullptr));
    return *this;
  }
  UniqueWindow(const UniqueWindow&) = delete;
  UniqueWindow& operator=(const UniqueWindow&) = delete;

  HWND get() const { return window_; }
  void Reset(HWND window = nullptr) {
    if (window_ && IsWindow(window_)) DestroyWindow(window_);
    window_ = window;
  }

 private:
  HWND window_ = nullptr;
};

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
