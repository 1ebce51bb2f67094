#include "platform/ui.h"

#include <windows.h>

namespace tavrine::platform {

namespace {

class Win32Ui : public Ui {
 public:
  int ShowMessageBox(const std::wstring& text, const std::wstring& title,
                     unsigned style) override {
    int pressed = MessageBoxW(nullptr, text.c_str(), title.c_str(), style);
    return pressed == 0 ? -1 : pressed;
  }

  bool CloseWindowByTitle(const std::wstring& title) override {
    HWND window = FindWindowW(nullptr, title.c_str());
    if (!window) return false;
    // A window of a hung thread must not hang the caller too.
    SendMessageTimeoutW(window, WM_CLOSE, 0, 0, SMTO_ABORTIFHUNG | SMTO_BLOCK, 5000, nullptr);
    return true;
  }

  bool HideWindowByTitle(const std::wstring& title) override {
    HWND window = FindWindowW(nullptr, title.c_str());
    if (!window) return false;
    ShowWindow(window, SW_HIDE);
    return true;
  }

  void PumpMessages() override {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) {
        // Leave the quit request for the caller's own message loop.
        PostQuitMessage(static_cast<int>(message.wParam));
        return;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
};

}  // namespace

Ui& SystemUi() {
  static Win32Ui ui;
  return ui;
}

}  // namespace tavrine::platform
