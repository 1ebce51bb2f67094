// The login dialog as the shell side opens it (UICommands.UI_Login_Command),
// photographed from a second thread and then cancelled, the way the dialog
// tests drive the real windows.
#include <windows.h>
#include <objbase.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "TavrinEUI.h"
#include "com/com_ptr.h"
#include "com_story.h"
#include "console.h"
#include "dialogs/win32/resource.h"
#include "dialogs/win32/win32_handles.h"
#include "png_writer.h"

namespace tavrine::comdemo {
namespace {

using dialogs::win32::MemoryDc;
using dialogs::win32::SelectScope;
using dialogs::win32::UniqueBitmap;
using dialogs::win32::WindowDc;

HWND WaitForWindow(const std::wstring& title, int timeout_ms) {
  for (int waited = 0; waited < timeout_ms; waited += 50) {
    if (HWND window = FindWindowW(L"#32770", title.c_str()); window && IsWindowVisible(window)) return window;
    Sleep(50);
  }
  return nullptr;
}

// The window's pixels as the screen shows them, written as PNG.
bool SaveWindow(HWND window, const std::wstring& png) {
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  Sleep(300);
  RECT rect{};
  GetWindowRect(window, &rect);
  const int width = rect.right - rect.left, height = rect.bottom - rect.top;
  if (width <= 0 || height <= 0) return false;
  WindowDc screen(nullptr);
  MemoryDc memory(screen.get());
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap) return false;
  {
    SelectScope select(memory.get(), bitmap.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), rect.left, rect.top, SRCCOPY);
  }
  GdiFlush();
  const int stride = (width * 3 + 3) & ~3;
  std::vector<std::uint8_t> rgb(static_cast<std::size_t>(width) * height * 3);
  for (int y = 0; y < height; ++y) {
    const auto* row = static_cast<const std::uint8_t*>(bits) + static_cast<std::size_t>(y) * stride;
    for (int x = 0; x < width; ++x) {
      std::uint8_t* out = &rgb[(static_cast<std::size_t>(y) * width + x) * 3];
      out[0] = row[x * 3 + 2];
      out[1] = row[x * 3 + 1];
      out[2] = row[x * 3 + 0];
    }
  }
  return testing::WritePng(png, width, height, rgb);
}

}  // namespace

bool ScreenshotLogin(const std::wstring& png, const std::wstring& title) {
  CLSID clsid{};
  com::ComPtr<_UICommands> commands;
  if (FAILED(CLSIDFromProgID(L"TavrinEUI.UICommands", &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID__UICommands, commands.put_void()))) {
    Say(L"TavrinEUI.UICommands cannot be created: is TavrinEUI.dll registered?");
    return false;
  }
  std::atomic<bool> saved{false}, seen{false};
  std::wstring label;
  // The dialog runs modally on this thread; the driver watches from its own.
  std::thread driver([&] {
    HWND window = WaitForWindow(title, 20000);
    if (!window) return;
    seen = true;
    wchar_t text[256] = {};
    GetWindowTextW(GetDlgItem(window, IDC_lblUserName), text, 256);
    label = text;
    SendMessageW(GetDlgItem(window, IDC_txtUserName), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"anna"));
    saved = SaveWindow(window, png);
    PostMessageW(GetDlgItem(window, IDC_Cancel), BM_CLICK, 0, 0);
  });
  LONG owner = 0;
  short result = 0;
  const HRESULT hr = commands->UI_Login_Command(&owner, &result);
  driver.join();
  Say(L"UI_Login_Command -> " + std::to_wstring(result) + (seen ? L", window \"" + title + L"\" shown" : L", no window \"" + title + L"\"") +
      L", user name label \"" + label + L"\"" + (saved ? L", saved " + png : L", NOT saved"));
  return SUCCEEDED(hr) && saved;
}

}  // namespace tavrine::comdemo
