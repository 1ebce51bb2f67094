#pragma once
#include <windows.h>
#include <ocidl.h>
#include <olectl.h>

#include <string>

#include "platform/win32/com_ptr.h"

namespace tavrine::dialogs::win32 {

// A picture file (GIF, JPEG, BMP, ICO, WMF) read through OLE, the reader
// every Windows has. Empty when the file is missing or is no picture: the
// dialog then draws plainly.
class Picture {
 public:
  Picture() = default;
  static Picture Load(const std::wstring& file);

  explicit operator bool() const { return static_cast<bool>(picture_); }
  // Stretched over `target`.
  void Draw(HDC dc, const RECT& target) const;

 private:
  platform::win32::ComPtr<IPicture> picture_;
};

// <application folder>\images\<file name>.
std::wstring ImageFile(const std::wstring& file_name);

}  // namespace tavrine::dialogs::win32
