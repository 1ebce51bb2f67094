#include <windows.h>
#include <commctrl.h>

#include "dialogs/dialog_texts.h"
#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/text_util.h"
#include "profile/profile_store.h"

namespace tavrine::dialogs::win32 {

namespace {

struct Caption {
  int control;
  int id;
  const wchar_t* english;
};

constexpr Caption kLoginCaptions[] = {
    {IDC_lblUserName, caption::kUserNameLabel, L"&Username or Email Address:"},
    {IDC_lblPassword, caption::kPasswordLabel, L"&Password:"},
    {IDC_lblServer, caption::kServerLabel, L"Connect to &Server:"},
    {IDC_remunamepwd, caption::kRemember, L"Re&member Username / Password and other settings"},
    {IDC_auto_Reconnect, caption::kAutoReconnect, L"Reconnect &automatically on Login"},
    {IDC_Login, caption::kLogin, L"&Login"},
    {IDC_Cancel, caption::kCancel, L"&Cancel"},
    {IDC_advanced, caption::kAdvanced, L"A&dvanced"},
    {IDC_picNewUserReg, caption::kNewUser, L"New User Sign up"},
    {IDC_picForgotPassword, caption::kForgotPassword, L"Forgot Password"},
    {IDC_picUpgrade, caption::kUpgrade, L"Upgrade Account"},
    {IDC_picFirewall, caption::kFirewall, L"Firewall Guidance"},
};

const std::wstring& LinkOf(int control) {
  const auto& settings = foundation::LoadedConfiguration();
  switch (control) {
    case IDC_picNewUserReg:
      return settings.signup_link;
    case IDC_picForgotPassword:
      return settings.forgot_pwd_link;
    case IDC_picUpgrade:
      return settings.account_upgrade_link;
    default:
      return settings.firewall_link;
  }
}

}  // namespace

std::wstring LoginCaption(int control_id) {
  for (const auto& caption : kLoginCaptions) {
    if (caption.control == control_id) return LocalText(caption.id, caption.english);
  }
  return L"";
}

LoginDialog::LoginDialog() : DialogBase(IDD_frmLogin) {}

std::int16_t LoginDialog::Show(HWND owner) {
  engine::Session::OpenConfiguration();
  opened_user_ = profile::DefaultUserName();
  procedure_.emplace(static_cast<LoginView&>(*this), opened_user_);
  if (ShowModal(owner) == -1) return 0;
  return procedure_->result_code();
}

int LoginDialog::OnInit() {
  const auto& settings = foundation::LoadedConfiguration();
  background_ = Picture::Load(ImageFile(L"login_screen_bigger.gif"));
  banner_ = Picture::Load(ImageFile(L"Login.gif"));
  SetWindowTextW(hwnd(), (settings.caption + L" - Login").c_str());
  for (const auto& caption : kLoginCaptions) SetText(caption.control, LoginCaption(caption.control));
  for (int link : {IDC_picNewUserReg, IDC_picForgotPassword, IDC_picUpgrade, IDC_picFirewall}) AddLink(link);

  auto store = profile::ProfileStore::ForCurrentInstallation();
  SetText(IDC_txtUserName, opened_user_);
  const bool remember = store.GetForUser(opened_user_, L"remunamepwd") == L"1";
  SetChecked(IDC_remunamepwd, remember);
  if (remember) SetText(IDC_txtPassword, store.GetForUser(opened_user_, L"password"));
  SetChecked(IDC_auto_Reconnect, store.GetForUser(opened_user_, L"AutoReconnect") == L"1");
  SetText(IDC_schipaddress, settings.domain_name);
  SendDlgItemMessageW(hwnd(), IDC_txtPassword, EM_LIMITTEXT, 255, 0);

  tips_.AddTool(Item(IDC_remunamepwd),
                LocalText(caption::kRememberTip,
                          L"Saves your username and password so that you can login to the application\r\n"
                          L"without entering the same on the subsequent logins"));
  tips_.AddTool(Item(IDC_auto_Reconnect),
                LocalText(caption::kAutoReconnectTip,
                          L"Connects you to the Tavrin application on subsequent logins or on "
                          L"restarting the computer"));
  hover_.Add(Item(IDC_Login), L"Connect Def", L"Connect Sel");
  hover_.Add(Item(IDC_Cancel), L"Close Def", L"Close Sel");
  hover_.Add(Item(IDC_advanced), L"Advanced Def", L"Advanced Sel");
  return opened_user_.empty() ? IDC_txtUserName : IDC_txtPassword;
}

std::optional<INT_PTR> LoginDialog::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_DRAWITEM || wparam != IDC_picBanner) return std::nullopt;
  DrawBanner(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
  return TRUE;
}

void LoginDialog::DrawBanner(const DRAWITEMSTRUCT& item) {
  if (banner_) {
    banner_.Draw(item.hDC, item.rcItem);
    return;
  }
  // Without the picture the product's caption stands in its place.
  auto font = reinterpret_cast<HFONT>(SendMessageW(hwnd(), WM_GETFONT, 0, 0));
  SelectScope select(item.hDC, font);
  SetBkMode(item.hDC, TRANSPARENT);
  RECT area = item.rcItem;
  DrawTextW(item.hDC, foundation::LoadedConfiguration().caption.c_str(), -1, &area,
            DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

// The values wait in the login procedure until the account has a profile.
void LoginDialog::ShowProxySettings() {
  LoginProcedure& login = *procedure_;
  ProxyDialog([&login](const std::wstring& name) { return login.ProxyValue(name); },
              [&login](const std::wstring& name, const std::wstring& value) {
                login.SetProxyValue(name, value);
              })
      .Show(hwnd());
}

void LoginDialog::OnCommand(int id, int notification) {
  switch (id) {
    case IDC_Login:
    case IDOK:
      if (busy_) return;  // a message box of the running login is open
      busy_ = true;
      procedure_->OnLogin();
      busy_ = false;
      return;
    case IDC_Cancel:
    case IDCANCEL:
      if (busy_) return;
      procedure_->OnCancel();
      End(0);
      return;
    case IDC_advanced:
      if (!busy_) ShowProxySettings();
      return;
    case IDC_picNewUserReg:
    case IDC_picForgotPassword:
    case IDC_picUpgrade:
    case IDC_picFirewall:
      if (notification == STN_CLICKED) OpenWebPage(LanguageLink(LinkOf(id)));
      return;
    default:
      return;
  }
}

std::wstring LoginDialog::UserNameText() { return Text(IDC_txtUserName); }
bool LoginDialog::AccountChoiceShown() { return IsWindowVisible(Item(IDC_ComboUserName)) != FALSE; }
std::wstring LoginDialog::ChosenAccount() { return Text(IDC_ComboUserName); }
std::wstring LoginDialog::PasswordText() { return Text(IDC_txtPassword); }
bool LoginDialog::RememberChecked() { return Checked(IDC_remunamepwd); }
void LoginDialog::SetRememberChecked(bool checked) { SetChecked(IDC_remunamepwd, checked); }
bool LoginDialog::AutoReconnectChecked() { return Checked(IDC_auto_Reconnect); }
std::wstring LoginDialog::ServerText() { return Text(IDC_schipaddress); }

void LoginDialog::SetLocked(bool locked) {
  for (int id : {IDC_Login, IDC_Cancel, IDC_advanced, IDC_ComboUserName}) Enable(id, !locked);
}

void LoginDialog::FocusUserName() {
  Focus(AccountChoiceShown() ? IDC_ComboUserName : IDC_txtUserName);
}
void LoginDialog::FocusPassword(bool select_all) { Focus(IDC_txtPassword, select_all); }

void LoginDialog::ShowAccountChoice(const std::vector<std::wstring>& names) {
  HWND combo = Item(IDC_ComboUserName);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const auto& name : names) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
  }
  SendMessageW(combo, CB_SETCURSEL, 0, 0);
  ShowWindow(Item(IDC_txtUserName), SW_HIDE);
  ShowWindow(combo, SW_SHOW);
}

KeyChoice LoginDialog::ShowEncKeyOption() { return EncKeyOptionDialog().Show(hwnd()); }
KeyChoice LoginDialog::ShowEncryptionPsd() { return EncryptionPsdDialog().Show(hwnd()); }
std::intptr_t LoginDialog::OpenWebPage(const std::wstring& address) { return OpenWithShell(address); }
void LoginDialog::CloseDialog() { End(1); }

}  // namespace tavrine::dialogs::win32
