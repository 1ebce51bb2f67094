#include "dialogs/win32/tooltip.h"

#include <commctrl.h>

#include <vector>

namespace tavrine::dialogs::win32 {

bool clsToolTip::Create(HWND parent) {
  INITCOMMONCONTROLSEX init{sizeof(init), ICC_WIN95_CLASSES};
  InitCommonControlsEx(&init);
  parent_ = parent;
  DWORD style = WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP | (balloon_ ? TTS_BALLOON : 0);
  window_.reset(CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, style, CW_USEDEFAULT,
                                CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, parent, nullptr,
                                GetModuleHandleW(nullptr), nullptr));
  if (!window_.get()) return false;
  SendMessageW(window_.get(), TTM_SETMAXTIPWIDTH, 0, 400);
  return true;
}

TOOLINFOW clsToolTip::ToolFor(HWND control) const {
  TOOLINFOW tool{};
  tool.cbSize = sizeof(tool);
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = parent_;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  return tool;
}

bool clsToolTip::AddTool(HWND control, const std::wstring& text) {
  if (!window_.get() || !control) return false;
  TOOLINFOW tool = ToolFor(control);
  std::wstring copy = text;  // the message takes a non-const pointer
  tool.lpszText = copy.data();
  return SendMessageW(window_.get(), TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool)) != FALSE;
}

bool clsToolTip::RemoveToolTip(HWND control) {
  if (!window_.get()) return false;
  TOOLINFOW tool = ToolFor(control);
  SendMessageW(window_.get(), TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  return true;
}

// The dialogs make their tooltip window before they set it up, so the shape
// must also change on a window that exists.
void clsToolTip::SetBalloon(bool balloon) {
  balloon_ = balloon;
  if (!window_.get()) return;
  LONG_PTR style = GetWindowLongPtrW(window_.get(), GWL_STYLE);
  style = balloon ? (style | TTS_BALLOON) : (style & ~static_cast<LONG_PTR>(TTS_BALLOON));
  SetWindowLongPtrW(window_.get(), GWL_STYLE, style);
}

COLORREF clsToolTip::BackColor() const {
  return static_cast<COLORREF>(SendMessageW(window_.get(), TTM_GETTIPBKCOLOR, 0, 0));
}
void clsToolTip::SetBackColor(COLORREF color) {
  SendMessageW(window_.get(), TTM_SETTIPBKCOLOR, color, 0);
}
COLORREF clsToolTip::ForeColor() const {
  return static_cast<COLORREF>(SendMessageW(window_.get(), TTM_GETTIPTEXTCOLOR, 0, 0));
}
void clsToolTip::SetForeColor(COLORREF color) {
  SendMessageW(window_.get(), TTM_SETTIPTEXTCOLOR, color, 0);
}
HFONT clsToolTip::Font() const {
  return reinterpret_cast<HFONT>(SendMessageW(window_.get(), WM_GETFONT, 0, 0));
}
void clsToolTip::SetFont(HFONT font) {
  SendMessageW(window_.get(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}
int clsToolTip::DelayTime() const {
  return static_cast<int>(SendMessageW(window_.get(), TTM_GETDELAYTIME, TTDT_INITIAL, 0));
}
void clsToolTip::SetDelayTime(int ms) {
  SendMessageW(window_.get(), TTM_SETDELAYTIME, TTDT_INITIAL, MAKELPARAM(ms, 0));
}
int clsToolTip::MaxTipWidth() const {
  return static_cast<int>(SendMessageW(window_.get(), TTM_GETMAXTIPWIDTH, 0, 0));
}
void clsToolTip::SetMaxTipWidth(int pixels) {
  SendMessageW(window_.get(), TTM_SETMAXTIPWIDTH, 0, pixels);
}
RECT clsToolTip::Margins() const {
  RECT margins{};
  SendMessageW(window_.get(), TTM_GETMARGIN, 0, reinterpret_cast<LPARAM>(&margins));
  return margins;
}
void clsToolTip::SetMargins(const RECT& margins) {
  SendMessageW(window_.get(), TTM_SETMARGIN, 0, reinterpret_cast<LPARAM>(&margins));
}
bool clsToolTip::RightToLeft() const {
  return (GetWindowLongPtrW(window_.get(), GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
}
void clsToolTip::SetRightToLeft(bool right_to_left) {
  LONG_PTR style = GetWindowLongPtrW(window_.get(), GWL_EXSTYLE);
  style = right_to_left ? (style | WS_EX_LAYOUTRTL) : (style & ~static_cast<LONG_PTR>(WS_EX_LAYOUTRTL));
  SetWindowLongPtrW(window_.get(), GWL_EXSTYLE, style);
}
void clsToolTip::SetToolTipTitle(int icon, const std::wstring& title) {
  icon_ = icon;
  title_ = title;
  SendMessageW(window_.get(), TTM_SETTITLEW, icon, reinterpret_cast<LPARAM>(title_.c_str()));
}

std::wstring clsToolTip::ToolTipText(HWND control) const {
  if (!window_.get()) return L"";
  std::vector<wchar_t> buffer(1024, L'\0');
  TOOLINFOW tool = ToolFor(control);
  tool.lpszText = buffer.data();
  SendMessageW(window_.get(), TTM_GETTEXTW, buffer.size(), reinterpret_cast<LPARAM>(&tool));
  std::wstring text(buffer.data(), buffer.size());
  while (!text.empty() && text.back() == L'\0') text.pop_back();
  return text;
}

int clsToolTip::ToolTipCount() const {
  if (!window_.get()) return 0;
  return static_cast<int>(SendMessageW(window_.get(), TTM_GETTOOLCOUNT, 0, 0));
}

}  // namespace tavrine::dialogs::win32
