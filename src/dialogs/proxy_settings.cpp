#include "dialogs/proxy_settings.h"

#include "dialogs/dialog_texts.h"
#include "foundation/configuration.h"
#include "platform/services.h"
#include "profile/profile_store.h"

namespace tavrine::dialogs {

namespace {

std::wstring Flag(bool value) { return value ? L"1" : L"0"; }

void Show(ProxyMessage message) {
  unsigned icon =
      message == ProxyMessage::kSystemProxyOff ? platform::kMbIconInformation : platform::kMbIconStop;
  platform::CurrentUi().ShowMessageBox(ProxyMessageText(message),
                                       foundation::LoadedConfiguration().message_title,
                                       platform::kMbOk | icon);
}

}  // namespace

std::wstring ProxyMessageText(ProxyMessage message) {
  switch (message) {
    case ProxyMessage::kNoAddress:
      return LocalText(1410, L"Enter the proxy address.");
    case ProxyMessage::kNoUserName:
      return LocalText(1411, L"Enter the proxy authentication username");
    case ProxyMessage::kSystemProxyOff:
      return LocalText(1412, L"The local Internet proxy settings are currently disabled.");
  }
  return L"";
}

ProfileReader CurrentProfileReader() {
  return [](const std::wstring& name) { return profile::GetUserProfile(name); };
}

ProfileWriter CurrentProfileWriter() {
  return [](const std::wstring& name, const std::wstring& value) {
    profile::UpdateUserProfile(name, value);
  };
}

HostPort SplitProxyServer(const std::wstring& text) {
  HostPort result;
  std::wstring entry = text;
  if (text.find(L"http") != std::wstring::npos) {
    entry = text.substr(0, text.find(L';'));
  }
  const std::size_t colon = entry.rfind(L':');
  const std::size_t host_end = colon == std::wstring::npos ? entry.size() : colon;
  if (colon != std::wstring::npos) result.port = entry.substr(colon + 1);
  const std::size_t equals = entry.find(L'=');
  const std::size_t host_start = equals == std::wstring::npos || equals > host_end ? 0 : equals + 1;
  result.host = entry.substr(host_start, host_end - host_start);
  return result;
}

bool AcceptPortKey(wchar_t key) { return (key >= L'0' && key <= L'9') || key == 8 || key == 27; }

bool ProxyPresenter::OnApply() {
  const bool enabled = view_.ProxyEnabled();
  writer_(L"Proxyset", Flag(enabled));
  if (enabled && view_.Address().empty()) {
    Show(ProxyMessage::kNoAddress);
    view_.FocusAddress();
    return false;
  }
  writer_(L"proxytypehttp", Flag(view_.HttpSelected()));
  writer_(L"proxytypesocks", Flag(view_.SocksSelected()));
  writer_(L"ProxyName", view_.Address());
  writer_(L"ProxyPort", view_.Port());
  const bool auth = view_.AuthChecked();
  writer_(L"ProxyAuthOn", Flag(auth));
  if (auth && view_.UserName().empty()) {
    Show(ProxyMessage::kNoUserName);
    view_.FocusUserName();
    return false;
  }
  writer_(L"ProxyUser", view_.UserName());
  writer_(L"ProxyPass", view_.Password());
  return true;
}

void ProxyPresenter::OnReset() {
  view_.SetAddress(L"");
  view_.SetPort(L"");
  view_.SetUserName(L"");
  view_.SetPassword(L"");
}

void ProxyPresenter::OnGetIeSettings() {
  if (registry_.ReadDword(kInternetSettingsKey, L"ProxyEnable").value_or(0) == 0) {
    Show(ProxyMessage::kSystemProxyOff);
    return;
  }
  HostPort server = SplitProxyServer(registry_.ReadString(kInternetSettingsKey, L"ProxyServer").value_or(L""));
  view_.SetProxyEnabled(true);
  view_.SetAddress(server.host);
  view_.SetPort(server.port);
}

}  // namespace tavrine::dialogs
