#include "window_driver.h"

#include <commctrl.h>

#include <algorithm>
#include <map>

#include "dialogs/win32/win32_handles.h"
#include "window_png.h"

namespace tavrine::dialogs::win32 {

testing::EngineInstallOptions Options(const char* language) {
  return {.aliases = {L"TavrinEClsClient.exe"},
          .configuration_ini = testing::StandardConfiguration(
              "EngineTimeoutSeconds=20\r\n"
              "[WebLink]\r\nForgotPwdLink=https://www.tavrine.com/forgot\r\n"
              "FirewallLink=https://www.tavrine.com/firewall\r\n",
              language)};
}

std::wstring WindowText(HWND window) {
  wchar_t text[1024] = {};
  GetWindowTextW(window, text, 1024);
  return text;
}

HWND WaitForWindow(const std::wstring& title, int timeout_ms) {
  return window_png::WaitForDialog(title, timeout_ms);
}

// A message box's text is its control 0xFFFF.
static std::wstring BoxText(HWND box) {
  HWND label = GetDlgItem(box, 0xFFFF);
  return label ? WindowText(label) : std::wstring();
}

// Reads the open message box's text and presses OK.
std::wstring DismissBox(const std::wstring& title) {
  HWND box = WaitForWindow(title);
  if (!box) return L"<no box>";
  const std::wstring text = BoxText(box);
  PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
  for (int i = 0; i < 100 && IsWindow(box); ++i) Sleep(20);
  return text;
}

void Type(HWND dialog, int id, const std::wstring& text) {
  SendMessageW(GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}
std::wstring Read(HWND dialog, int id) { return WindowText(GetDlgItem(dialog, id)); }
// Posted, never sent: the click may open a modal box the driver must answer.
void Click(HWND dialog, int id) { PostMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }

// --- the keyboard ----------------------------------------------------------
// Keys are posted to the control that has the focus, as the keyboard delivers
// them, so the modal loop's dialog manager sees them first (Tab, Enter,
// Escape, access keys). Each step waits, bounded, for what the key does.

// The control with the keyboard focus on the window's thread.
HWND FocusOf(HWND window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info)) return nullptr;
  return info.hwndFocus;
}
int FocusedId(HWND window) { return GetDlgCtrlID(FocusOf(window)); }

void PostKey(HWND window, UINT key) {
  HWND target = FocusOf(window);
  if (!target) target = window;
  PostMessageW(target, WM_KEYDOWN, key, 1);
  PostMessageW(target, WM_KEYUP, key, 0xC0000001);
}

// The letter after the single "&" of a caption; 0 when it has none.
wchar_t AccessKeyOf(const std::wstring& caption) {
  for (std::size_t at = caption.find(L'&'); at != std::wstring::npos && at + 1 < caption.size();
       at = caption.find(L'&', at + 2)) {
    if (caption[at + 1] != L'&') return static_cast<wchar_t>(towupper(caption[at + 1]));
  }
  return 0;
}

// Alt and the access key of control `id`'s caption.
void PressAccessKey(HWND dialog, int id) {
  HWND target = FocusOf(dialog);
  PostMessageW(target ? target : dialog, WM_SYSCHAR, AccessKeyOf(Read(dialog, id)), 0x20000001);
}

// Tab; true once the focus has moved on.
bool Tab(HWND dialog) {
  HWND before = FocusOf(dialog);
  PostKey(dialog, VK_TAB);
  return testing::WaitUntil([&] { return FocusOf(dialog) != before; }, 5000);
}

// Characters typed into the focused control; true once it shows `expected`.
bool TypeKeys(HWND dialog, const std::wstring& text, const std::wstring& expected) {
  HWND target = FocusOf(dialog);
  for (wchar_t c : text) PostMessageW(target, WM_CHAR, c, 1);
  return testing::WaitUntil([&] { return WindowText(target) == expected; }, 5000);
}

bool WaitForFocus(HWND dialog, int id) {
  return testing::WaitUntil([&] { return FocusedId(dialog) == id; }, 5000);
}

// Reads the open message box's text and presses Enter on it.
std::wstring AnswerBoxWithEnter(const std::wstring& title) {
  HWND box = WaitForWindow(title);
  if (!box) return L"<no box>";
  const std::wstring text = BoxText(box);
  if (!testing::WaitUntil([&] { return IsChild(box, FocusOf(box)) != FALSE; }, 5000)) return L"<no focus>";
  PostKey(box, VK_RETURN);
  if (!testing::WaitUntil([&] { return !IsWindow(box); }, 5000)) return L"<still open>";
  return text;
}

// Labels of inputs and every button need an access key, and no letter may
// serve twice in one window; what is wrong, as readable lines.
std::vector<std::wstring> AccessKeyProblems(HWND dialog) {
  std::vector<std::wstring> problems;
  std::map<wchar_t, std::wstring> taken;
  for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    wchar_t kind[32] = {}, next_kind[32] = {};
    GetClassNameW(control, kind, 32);
    HWND next = GetWindow(control, GW_HWNDNEXT);
    if (next) GetClassNameW(next, next_kind, 32);
    const std::wstring text = WindowText(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    const bool button = lstrcmpiW(kind, L"Button") == 0 && (style & BS_TYPEMASK) != BS_GROUPBOX;
    const bool input_label = lstrcmpiW(kind, L"Static") == 0 && !(style & SS_NOTIFY) &&
                             (lstrcmpiW(next_kind, L"Edit") == 0 || lstrcmpiW(next_kind, L"ComboBox") == 0);
    const wchar_t key = AccessKeyOf(text);
    if ((button || input_label) && key == 0) problems.push_back(L"no access key: " + text);
    if (key == 0) continue;
    if (auto [it, fresh] = taken.emplace(key, text); !fresh) {
      problems.push_back(std::wstring(L"access key ") + key + L" twice: " + it->second + L" | " + text);
    }
  }
  return problems;
}

std::wstring ScreenshotFolder() {
  std::wstring path = L"Z:" + std::wstring(TAVRINE_SCREENSHOT_DIR);
  std::replace(path.begin(), path.end(), L'/', L'\\');
  CreateDirectoryW(path.c_str(), nullptr);
  return path;
}

bool Screenshot(HWND window, const std::wstring& name) {
  return window_png::SaveWindowPng(window, ScreenshotFolder() + L"\\" + name + L".png");
}

// EnumChildWindows callback: adds the control's text to *found when it is cut off.
// A named CALLBACK function: a lambda converts to a cdecl pointer, wrong on x86.
static BOOL CALLBACK CollectCutOffText(HWND control, LPARAM found) {
  wchar_t kind[16] = {};
  GetClassNameW(control, kind, 16);
  const bool label = lstrcmpiW(kind, L"Static") == 0, button = lstrcmpiW(kind, L"Button") == 0;
  const std::wstring text = WindowText(control);
  const LONG style = GetWindowLongW(control, GWL_STYLE);
  if (!(label || button) || text.empty() || !IsWindowVisible(control)) return TRUE;
  if (label && (style & SS_TYPEMASK) > SS_RIGHT) return TRUE;  // pictures, frames
  const LONG shape = style & BS_TYPEMASK;
  if (button && shape == BS_GROUPBOX) return TRUE;
  RECT room{};
  GetClientRect(control, &room);
  const bool box = button && (shape == BS_CHECKBOX || shape == BS_AUTOCHECKBOX ||
                              shape == BS_RADIOBUTTON || shape == BS_AUTORADIOBUTTON);
  // The check mark, or a push button's edges, take their share of the width.
  room.right -= box      ? GetSystemMetrics(SM_CXMENUCHECK) + 4
                : button ? 2 * GetSystemMetrics(SM_CXEDGE)
                         : 0;
  const bool wraps = label || (style & BS_MULTILINE);
  WindowDc dc(control);
  SelectScope font(dc.get(), reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
  RECT need{0, 0, room.right, 0};
  DrawTextW(dc.get(), text.c_str(), -1, &need,
            DT_CALCRECT | (wraps ? DT_WORDBREAK : DT_SINGLELINE));
  if (need.right > room.right || need.bottom > room.bottom) {
    reinterpret_cast<std::vector<std::wstring>*>(found)->push_back(text);
  }
  return TRUE;
}

// Texts of the visible labels and buttons that do not fit their control in its
// own font: a translation longer than the layout allows.
std::vector<std::wstring> CutOffTexts(HWND dialog) {
  std::vector<std::wstring> cut;
  EnumChildWindows(dialog, CollectCutOffText, reinterpret_cast<LPARAM>(&cut));
  return cut;
}

// EnumThreadWindows callback, named for the same reason as CollectCutOffText.
static BOOL CALLBACK CancelIfVisible(HWND open, LPARAM) {
  if (IsWindowVisible(open)) PostMessageW(open, WM_COMMAND, IDCANCEL, 0);
  return TRUE;
}

// A script that stopped early may leave its dialog open, perhaps under a
// message box: after a grace period both are cancelled, so that the test ends
// and reports instead of waiting forever.
void CloseIfLeftOpen(HWND window) {
  if (testing::WaitUntil([window] { return !IsWindow(window); }, 30000)) return;
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  testing::WaitUntil(
      [window, thread] {
        if (!IsWindow(window)) return true;
        EnumThreadWindows(thread, CancelIfVisible, 0);
        return false;
      },
      30000);
}

}  // namespace tavrine::dialogs::win32
