#pragma once
#include <windows.h>

#include <memory>
#include <optional>
#include <string>

#include "dialogs/dialog_host.h"
#include "dialogs/encryption_key.h"
#include "dialogs/login_flow.h"
#include "dialogs/proxy_settings.h"
#include "dialogs/win32/dialog_base.h"

namespace tavrine::dialogs::win32 {

// frmEncKeyOption.
class EncKeyOptionDialog final : public DialogBase, private EncKeyOptionView {
 public:
  EncKeyOptionDialog();
  KeyChoice Show(HWND owner);

 private:
  int OnInit() override;
  void OnCommand(int id, int notification) override;
  bool DefaultKeySelected() override;
  std::wstring Key1() override;
  std::wstring Key2() override;
  void ClearKeys() override;
  void FocusKey1() override;
  void CloseDialog() override;
  EncKeyOptionPresenter presenter_;
};

// EncryptionPsd.
class EncryptionPsdDialog final : public DialogBase, private EncryptionPsdView {
 public:
  EncryptionPsdDialog();
  KeyChoice Show(HWND owner);

 private:
  int OnInit() override;
  void OnCommand(int id, int notification) override;
  std::wstring Key() override;
  void ClearKey() override;
  void FocusKey() override;
  void CloseDialog() override;
  EncryptionPsdPresenter presenter_;
};

// Proxysetting.
class ProxyDialog final : public DialogBase, private ProxyView {
 public:
  explicit ProxyDialog(ProfileReader reader = CurrentProfileReader(),
                       ProfileWriter writer = CurrentProfileWriter());
  void Show(HWND owner);

 private:
  int OnInit() override;
  void OnCommand(int id, int notification) override;
  bool ProxyEnabled() override;
  void SetProxyEnabled(bool checked) override;
  bool HttpSelected() override;
  bool SocksSelected() override;
  std::wstring Address() override;
  void SetAddress(const std::wstring& text) override;
  std::wstring Port() override;
  void SetPort(const std::wstring& text) override;
  bool AuthChecked() override;
  std::wstring UserName() override;
  void SetUserName(const std::wstring& text) override;
  std::wstring Password() override;
  void SetPassword(const std::wstring& text) override;
  void FocusAddress() override;
  void FocusUserName() override;
  void CloseDialog() override;
  void EnableDependentControls();
  static LRESULT CALLBACK PortFilter(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);

  ProfileReader reader_;
  std::unique_ptr<platform::Registry> registry_;
  std::optional<ProxyPresenter> presenter_;
};

// frmLogin.
class LoginDialog final : public DialogBase, private LoginView {
 public:
  LoginDialog();
  // Shows the dialog modally and returns its result code.
  std::int16_t Show(HWND owner);
  const HoverButtons& hover_buttons() const { return hover_; }
  const clsToolTip& tooltips() const { return tips_; }
  bool HasBannerImage() const { return static_cast<bool>(banner_); }

 private:
  int OnInit() override;
  void OnCommand(int id, int notification) override;
  std::optional<INT_PTR> OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  std::wstring UserNameText() override;
  bool AccountChoiceShown() override;
  std::wstring ChosenAccount() override;
  std::wstring PasswordText() override;
  bool RememberChecked() override;
  void SetRememberChecked(bool checked) override;
  bool AutoReconnectChecked() override;
  std::wstring ServerText() override;
  void SetLocked(bool locked) override;
  void FocusUserName() override;
  void FocusPassword(bool select_all) override;
  void ShowAccountChoice(const std::vector<std::wstring>& names) override;
  KeyChoice ShowEncKeyOption() override;
  KeyChoice ShowEncryptionPsd() override;
  std::intptr_t OpenWebPage(const std::wstring& address) override;
  void CloseDialog() override;

  void DrawBanner(const DRAWITEMSTRUCT& item);
  void ShowProxySettings();

  std::wstring opened_user_;
  std::optional<LoginProcedure> procedure_;
  Picture banner_;  // images\Login.gif
  bool busy_ = false;
};

// The session window: the logged-in user, the server and the quota. Its
// owner and Show are what UI_Session_Command sets and calls.
class frmSession final : public DialogBase {
 public:
  frmSession();
  std::intptr_t g_ParentHandle = 0;
  // 1: modal (the only form the command uses).
  bool Show(int modal);

 private:
  int OnInit() override;
  void OnCommand(int id, int notification) override;
  // The quota line, its bar and the time it was read.
  void ShowQuota(const std::optional<operations::QuotaReading>& quota);
  SessionInfo info_;
};

// Captions of the login dialog by control id, in the configured language.
std::wstring LoginCaption(int control_id);

}  // namespace tavrine::dialogs::win32
