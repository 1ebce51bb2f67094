// Log in with the dialog: the library shows its login window modally, owned
// by the caller's window, and returns what the login came to.
//
//   login_dialog.exe              the user fills in the dialog
//   login_dialog.exe --press-escape   a helper thread presses Escape in the dialog
//                                     once it is shown (for an unattended run)
//
// Calls: UICommands.UI_Login_Command, UICommands.W_GetCurrentUserName,
//        UICommands.W_GetMessageString / W_GetMessageInfo.
#include <atomic>
#include <thread>

#include "sample_support.h"

namespace {

struct LoginWindowSearch {
  DWORD process;
  HWND found;
};

// EnumWindows callback. A named CALLBACK function: a lambda would convert to a
// cdecl pointer, which breaks the stack of a 32-bit program.
BOOL CALLBACK MatchLoginWindow(HWND window, LPARAM data) {
  auto* search = reinterpret_cast<LoginWindowSearch*>(data);
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  wchar_t title[256] = {};
  GetWindowTextW(window, title, 256);
  const std::wstring text = title;
  const std::wstring suffix = L" - Login";
  if (owner == search->process && IsWindowVisible(window) && text.size() > suffix.size() &&
      text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0) {
    search->found = window;
    return FALSE;
  }
  return TRUE;
}

// The login window is "<product caption> - Login", a dialog of this process.
HWND FindLoginWindow() {
  LoginWindowSearch search{GetCurrentProcessId(), nullptr};
  EnumWindows(MatchLoginWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  const bool press_escape = argc == 2 && std::wstring(argv[1]) == L"--press-escape";
  return sample::Run([&] {
    auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);

    std::thread helper;
    std::atomic<bool> seen{false};
    if (press_escape) {
      helper = std::thread([&seen] {
        for (int waited = 0; waited < 600 && !seen; ++waited) {  // up to 60 s
          if (HWND window = FindLoginWindow()) {
            seen = true;
            PostMessageW(window, WM_COMMAND, IDCANCEL, 0);  // what Escape sends
          } else {
            Sleep(100);
          }
        }
      });
    }

    // The owner window handle, by reference; 0 when the caller has none.
    LONG owner = 0;
    short result = 0;
    sample::Check(commands->UI_Login_Command(&owner, &result), "UI_Login_Command");
    if (helper.joinable()) helper.join();
    if (press_escape && !seen) {
      sample::Say(L"login_dialog: the login window was never shown (result " + std::to_wstring(result) + L")");
      return 1;
    }

    if (result == 402) {
      sample::Bstr user(L"");
      LONG named = 0;
      sample::Check(commands->W_GetCurrentUserName(user.InOut(), &named), "W_GetCurrentUserName");
      sample::Say(L"login_dialog: logged in as " + user.str());
      return 0;
    }
    // The dialog has told the user already; the code says why it ended.
    sample::Say(L"login_dialog: not logged in: " + sample::Explain(commands.get(), result));
    return press_escape ? 0 : 1;
  });
}
