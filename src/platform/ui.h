#pragma once
#include <string>

namespace tavrine::platform {

// Message-box styles, with the values Win32 gives them.
inline constexpr unsigned kMbOk = 0x0;
inline constexpr unsigned kMbOkCancel = 0x1;
inline constexpr unsigned kMbYesNo = 0x4;
inline constexpr unsigned kMbIconStop = 0x10;
inline constexpr unsigned kMbIconQuestion = 0x20;
inline constexpr unsigned kMbIconExclamation = 0x30;
inline constexpr unsigned kMbIconInformation = 0x40;

// Every message box and every top-level window lookup goes through here.
class Ui {
 public:
  virtual ~Ui() = default;
  // Returns the button pressed (IDOK = 1 ...), or -1 when no box could be shown.
  virtual int ShowMessageBox(const std::wstring& text, const std::wstring& title,
                             unsigned style) = 0;
  // Sends WM_CLOSE to the top-level window with exactly this title; false when none.
  virtual bool CloseWindowByTitle(const std::wstring& title) = 0;
  // Hides the top-level window with exactly this title; false when none.
  virtual bool HideWindowByTitle(const std::wstring& title) = 0;
  // Lets pending window messages of this thread run.
  virtual void PumpMessages() = 0;
};

Ui& SystemUi();

}  // namespace tavrine::platform
