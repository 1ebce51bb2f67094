#pragma once
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/win32/picture.h"
#include "dialogs/win32/tooltip.h"
#include "dialogs/win32/win32_handles.h"

namespace tavrine::dialogs::win32 {

// The module that holds our templates: the DLL in production, the test program in tests.
HINSTANCE ResourceModule();

// Activates the common-controls-6 manifest of ResourceModule() for a scope.
class VisualStylesScope {
 public:
  VisualStylesScope();
  ~VisualStylesScope();
  VisualStylesScope(const VisualStylesScope&) = delete;
  VisualStylesScope& operator=(const VisualStylesScope&) = delete;

 private:
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};

// Image buttons that show "<name> Sel" under the mouse and "<name> Def"
// otherwise; moving over one resets the others. Without both image files a
// button stays a plain text button.
class HoverButtons {
 public:
  HoverButtons() = default;
  HoverButtons(const HoverButtons&) = delete;
  HoverButtons& operator=(const HoverButtons&) = delete;
  ~HoverButtons();

  // images: <application folder>\images\<def_name>.bmp and <sel_name>.bmp.
  void Add(HWND button, const std::wstring& def_name, const std::wstring& sel_name);
  // True when the button shows images (both files were found).
  bool HasImages(HWND button) const;
  void Hover(HWND button);  // what the mouse does; public so tests can drive it
  void Leave(HWND button);

 private:
  struct Entry {
    HWND button;
    UniqueBitmap def;
    UniqueBitmap sel;
  };
  Entry* Find(HWND button);
  static LRESULT CALLBACK SubclassProc(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
  std::vector<std::unique_ptr<Entry>> entries_;
};

// Modal dialogs from a template. The trampoline keeps `this` in DWLP_USER
// from WM_INITDIALOG on and forwards to the members.
class DialogBase {
 public:
  virtual ~DialogBase() = default;
  DialogBase(const DialogBase&) = delete;
  DialogBase& operator=(const DialogBase&) = delete;

  // Runs the dialog; EndDialog's value, or -1 when it could not be shown.
  INT_PTR ShowModal(HWND owner);
  HWND hwnd() const { return hwnd_; }
  // Whether the picture files were found and read (else the dialog draws plainly).
  bool HasBackgroundImage() const { return static_cast<bool>(background_); }
  bool HasLinkCursorImage() const { return static_cast<bool>(link_cursor_); }

 protected:
  explicit DialogBase(int template_id) : template_id_(template_id) {}

  // Sets up the controls; the control to focus first, 0 for the dialog's choice.
  virtual int OnInit() { return 0; }
  virtual void OnCommand(int id, int notification) = 0;
  // Messages a dialog wants beyond commands; nullopt: not handled.
  virtual std::optional<INT_PTR> OnMessage(UINT, WPARAM, LPARAM) { return std::nullopt; }

  HWND Item(int id) const { return GetDlgItem(hwnd_, id); }
  std::wstring Text(int id) const;
  void SetText(int id, const std::wstring& text);
  bool Checked(int id) const;
  void SetChecked(int id, bool checked);
  void Focus(int id, bool select_all = false);
  void Enable(int id, bool enabled);
  void End(INT_PTR result) { EndDialog(hwnd_, result); }
  // Link labels: blue text and the hand cursor; a tab stop that Enter and
  // Space follow as a click does.
  void AddLink(int id);

  clsToolTip tips_;
  HoverButtons hover_;
  // Drawn stretched under the controls when set.
  Picture background_;

 private:
  static INT_PTR CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
  static LRESULT CALLBACK LinkKeys(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
  INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void ApplyRoundedRegion();
  bool IsLink(int id) const;
  // WM_CTLCOLORSTATIC: the brush, or FALSE for the default colours.
  INT_PTR StaticColors(HDC dc, HWND control);

  int template_id_;
  HWND hwnd_ = nullptr;
  std::vector<int> links_;
  UniqueIcon link_cursor_;  // images\Hand.ico; the system hand without it
};

// Opens an address with the shell; its result (above 32: opened).
std::intptr_t OpenWithShell(const std::wstring& target, const std::wstring& parameters = L"");
// Opens a topic of the help file in the application folder with hh.exe.
void OpenHelpTopic(const wchar_t* topic);

// Takes the place of the shell for OpenWithShell on this thread while it
// lives, so that tests see which page or help topic a dialog asks for
// without a browser or help viewer starting.
using ShellOpener = std::function<std::intptr_t(const std::wstring& target, const std::wstring& parameters)>;
class ScopedShellOpener {
 public:
  explicit ScopedShellOpener(ShellOpener opener);
  ~ScopedShellOpener();
  ScopedShellOpener(const ScopedShellOpener&) = delete;
  ScopedShellOpener& operator=(const ScopedShellOpener&) = delete;

 private:
  friend std::intptr_t OpenWithShell(const std::wstring& target, const std::wstring& parameters);
  ShellOpener opener_;
  ScopedShellOpener* saved_;
};

}  // namespace tavrine::dialogs::win32
