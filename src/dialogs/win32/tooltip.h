#pragma once
#include <windows.h>
#include <commctrl.h>

#include <string>

#include "dialogs/win32/win32_handles.h"

namespace tavrine::dialogs::win32 {

// The system tooltip window ("tooltips_class32") for one parent window.
class clsToolTip {
 public:
  clsToolTip() = default;
  clsToolTip(const clsToolTip&) = delete;
  clsToolTip& operator=(const clsToolTip&) = delete;

  // Makes the tooltip window (common controls initialised first).
  bool Create(HWND parent);
  // Registers a control with its text.
  bool AddTool(HWND control, const std::wstring& text);
  bool RemoveToolTip(HWND control);

  bool Balloon() const { return balloon_; }
  void SetBalloon(bool balloon);  // before or after Create
  COLORREF BackColor() const;
  void SetBackColor(COLORREF color);
  COLORREF ForeColor() const;
  void SetForeColor(COLORREF color);
  HFONT Font() const;
  void SetFont(HFONT font);  // not owned: the caller keeps it alive
  int DelayTime() const;     // ms before the tip appears
  void SetDelayTime(int ms);
  int MaxTipWidth() const;
  void SetMaxTipWidth(int pixels);
  RECT Margins() const;
  void SetMargins(const RECT& margins);
  bool RightToLeft() const;
  void SetRightToLeft(bool right_to_left);
  int ToolTipIcon() const { return icon_; }          // TTI_NONE, TTI_INFO, ...
  const std::wstring& ToolTipTitle() const { return title_; }
  void SetToolTipTitle(int icon, const std::wstring& title);
  // A control's text as the tooltip holds it, trailing zero characters stripped.
  std::wstring ToolTipText(HWND control) const;
  int ToolTipCount() const;
  HWND ToolTipHandle() const { return window_.get(); }

 private:
  TOOLINFOW ToolFor(HWND control) const;
  UniqueWindow window_;
  HWND parent_ = nullptr;
  bool balloon_ = false;
  int icon_ = 0;
  std::wstring title_;
};

}  // namespace tavrine::dialogs::win32
