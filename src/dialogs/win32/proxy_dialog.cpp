#include <windows.h>
#include <commctrl.h>

#include "dialogs/dialog_texts.h"
#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/configuration.h"
#include "profile/profile_store.h"

namespace tavrine::dialogs::win32 {

ProxyDialog::ProxyDialog(ProfileReader reader, ProfileWriter writer)
    : DialogBase(IDD_Proxysetting),
      reader_(std::move(reader)),
      registry_(platform::OpenCurrentUserRegistry(profile::ProfileStoreFile())) {
  presenter_.emplace(static_cast<ProxyView&>(*this), std::move(writer), *registry_);
}

void ProxyDialog::Show(HWND owner) { ShowModal(owner); }

int ProxyDialog::OnInit() {
  SetWindowTextW(hwnd(), LocalText(caption::kProxyTitle, L"Proxy Settings").c_str());
  struct {
    int control;
    int id;
    const wchar_t* english;
  } const captions[] = {
      {IDC_Proxyenabled, caption::kProxyEnabled, L"&Enable HTTP/SOCKS Proxy"},
      {IDC_lblProxyNote, caption::kProxyNote, L"Only HTTP/SOCKS based HTTP proxy"},
      {IDC_httpopt, caption::kHttpOption, L"Enable &HTTP proxy"},
      {IDC_socksopt, caption::kSocksOption, L"Enable &SOCKS proxy"},
      {IDC_lblIPText, caption::kProxyAddress, L"Proxy &Address:"},
      {IDC_lblProxyPort, caption::kProxyPortLabel, L"Proxy &Port:"},
      {IDC_cmdGetIESetting, caption::kGetIeSettings, L"&Get IE Settings"},
      {IDC_ProxyAuth, caption::kProxyAuth, L"Enable Proxy Au&thentication"},
      {IDC_lblsUsername, caption::kProxyUser, L"Proxy &Username:"},
      {IDC_lblsPassword, caption::kProxyPassword, L"Proxy Pass&word:"},
      {IDC_Ok, caption::kApply, L"App&ly Proxy Settings"},
      {IDC_Reset, caption::kReset, L"&Reset"},
      {IDC_Cancel, caption::kClose, L"&Close"},
      {IDC_lblHelp, caption::kHelp, L"Help"},
  };
  for (const auto& c : captions) SetText(c.control, LocalText(c.id, c.english));
  // "Tavrin" in these texts becomes the product name.
  SetText(IDC_lblProxyIntro,
          LocalText(caption::kProxyIntro,
                    L"Set the Proxy server for your computer to allow the Tavrin application to reach its server"));
  SetText(IDC_lblCredentials,
          LocalText(caption::kProxyCredentials,
                    L"Enter the proxy server credentials to allow the Tavrin application to function smoothly"));
  AddLink(IDC_lblHelp);

  auto value = [this](const wchar_t* name) { return reader_(name); };
  SetChecked(IDC_Proxyenabled, value(L"Proxyset") == L"1");
  const bool socks = value(L"proxytypesocks") == L"1";
  SetChecked(IDC_socksopt, socks);
  SetChecked(IDC_httpopt, !socks);
  SetText(IDC_IPText, value(L"ProxyName"));
  SetText(IDC_ProxyPort, value(L"ProxyPort"));
  SetChecked(IDC_ProxyAuth, value(L"ProxyAuthOn") == L"1");
  SetText(IDC_sUsername, value(L"ProxyUser"));
  SetText(IDC_sPassword, value(L"ProxyPass"));

  SetWindowSubclass(Item(IDC_ProxyPort), PortFilter, 0, 0);
  tips_.AddTool(Item(IDC_IPText), LocalText(caption::kProxyAddressTip,
                                            L"IP address or the machine name of the proxy server"));
  tips_.AddTool(Item(IDC_sUsername),
                LocalText(caption::kProxyUserTip, L"Username to connect to the proxy server"));
  tips_.AddTool(Item(IDC_sPassword),
                LocalText(caption::kProxyPasswordTip, L"Password to connect to the proxy server"));
  hover_.Add(Item(IDC_Ok), L"Big Btn1", L"Big Btn2");
  hover_.Add(Item(IDC_Reset), L"Small Btn1", L"Small Btn2");
  hover_.Add(Item(IDC_Cancel), L"Small Btn1", L"Small Btn2");
  EnableDependentControls();
  return IDC_Proxyenabled;
}

// Address, port and type mean something only with a proxy, user name and
// password only with authentication. Apply reads them all the same.
void ProxyDialog::EnableDependentControls() {
  const bool proxy = Checked(IDC_Proxyenabled);
  for (int id : {IDC_httpopt, IDC_socksopt, IDC_lblIPText, IDC_IPText, IDC_lblProxyPort, IDC_ProxyPort}) {
    Enable(id, proxy);
  }
  const bool auth = Checked(IDC_ProxyAuth);
  for (int id : {IDC_lblsUsername, IDC_sUsername, IDC_lblsPassword, IDC_sPassword}) Enable(id, auth);
}

LRESULT CALLBACK ProxyDialog::PortFilter(HWND edit, UINT message, WPARAM wparam, LPARAM lparam,
                                         UINT_PTR, DWORD_PTR) {
  if (message == WM_CHAR && !AcceptPortKey(static_cast<wchar_t>(wparam))) return 0;
  if (message == WM_NCDESTROY) RemoveWindowSubclass(edit, PortFilter, 0);
  return DefSubclassProc(edit, message, wparam, lparam);
}

void ProxyDialog::OnCommand(int id, int notification) {
  switch (id) {
    case IDC_Ok:
    case IDOK:
      // The dialog stays open after Apply, so the values can be checked.
      presenter_->OnApply();
      return;
    case IDC_Reset:
      presenter_->OnReset();
      return;
    case IDC_Cancel:
    case IDCANCEL:
      presenter_->OnClose();
      return;
    case IDC_cmdGetIESetting:
      presenter_->OnGetIeSettings();
      return;
    case IDC_lblHelp:
      if (notification == STN_CLICKED) OpenHelpTopic(kProxyHelpTopic);
      return;
    case IDC_Proxyenabled:
    case IDC_ProxyAuth:
      if (notification == BN_CLICKED) EnableDependentControls();
      return;
    default:
      return;
  }
}

bool ProxyDialog::ProxyEnabled() { return Checked(IDC_Proxyenabled); }
void ProxyDialog::SetProxyEnabled(bool checked) {
  SetChecked(IDC_Proxyenabled, checked);
  EnableDependentControls();
}
bool ProxyDialog::HttpSelected() { return Checked(IDC_httpopt); }
bool ProxyDialog::SocksSelected() { return Checked(IDC_socksopt); }
std::wstring ProxyDialog::Address() { return Text(IDC_IPText); }
void ProxyDialog::SetAddress(const std::wstring& text) { SetText(IDC_IPText, text); }
std::wstring ProxyDialog::Port() { return Text(IDC_ProxyPort); }
void ProxyDialog::SetPort(const std::wstring& text) { SetText(IDC_ProxyPort, text); }
bool ProxyDialog::AuthChecked() { return Checked(IDC_ProxyAuth); }
std::wstring ProxyDialog::UserName() { return Text(IDC_sUsername); }
void ProxyDialog::SetUserName(const std::wstring& text) { SetText(IDC_sUsername, text); }
std::wstring ProxyDialog::Password() { return Text(IDC_sPassword); }
void ProxyDialog::SetPassword(const std::wstring& text) { SetText(IDC_sPassword, text); }
void ProxyDialog::FocusAddress() { Focus(IDC_IPText); }
void ProxyDialog::FocusUserName() { Focus(IDC_sUsername); }
void ProxyDialog::CloseDialog() { End(0); }

}  // namespace tavrine::dialogs::win32
