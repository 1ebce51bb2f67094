// The login dialog as the shell side opens it (UICommands.UI_Login_Command),
// photographed from a second thread and then cancelled, the way the dialog
// tests drive the real windows.
#include <windows.h>
#include <objbase.h>

#include <atomic>
#include <thread>

#include "TavrinEUI.h"
#include "com/com_ptr.h"
#include "com_story.h"
#include "console.h"
#include "dialogs/win32/resource.h"
#include "window_png.h"

namespace tavrine::comdemo {

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
    HWND window = window_png::WaitForDialog(title, 20000);
    if (!window) return;
    seen = true;
    wchar_t text[256] = {};
    GetWindowTextW(GetDlgItem(window, IDC_lblUserName), text, 256);
    label = text;
    SendMessageW(GetDlgItem(window, IDC_txtUserName), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"anna"));
    saved = window_png::SaveWindowPng(window, png);
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
