#include "dialogs/win32/dialogs_win32.h"

namespace tavrine::dialogs {

namespace {
class Win32DialogHost final : public DialogHost {
 public:
  std::int16_t ShowLoginDialog(std::intptr_t owner) override {
    return win32::LoginDialog().Show(reinterpret_cast<HWND>(owner));
  }
  bool ShowSessionWindow(std::intptr_t owner, bool modal) override {
    win32::frmSession session;
    session.g_ParentHandle = owner;
    return session.Show(modal ? 1 : 0);
  }
};
}  // namespace

DialogHost& SystemDialogHost() {
  static Win32DialogHost host;
  return host;
}

}  // namespace tavrine::dialogs
