#pragma once
#include <functional>
#include <string>

#include "platform/registry.h"

namespace tavrine::dialogs {

enum class ProxyMessage { kNoAddress, kNoUserName, kSystemProxyOff };
std::wstring ProxyMessageText(ProxyMessage message);

// The Proxysetting dialog as its handlers see it.
class ProxyView {
 public:
  virtual ~ProxyView() = default;
  virtual bool ProxyEnabled() = 0;  // Proxyenabled
  virtual void SetProxyEnabled(bool checked) = 0;
  virtual bool HttpSelected() = 0;  // httpopt
  virtual bool SocksSelected() = 0; // socksopt
  virtual std::wstring Address() = 0;  // IPText
  virtual void SetAddress(const std::wstring& text) = 0;
  virtual std::wstring Port() = 0;     // ProxyPort
  virtual void SetPort(const std::wstring& text) = 0;
  virtual bool AuthChecked() = 0;      // ProxyAuth
  virtual std::wstring UserName() = 0; // sUsername
  virtual void SetUserName(const std::wstring& text) = 0;
  virtual std::wstring Password() = 0; // sPassword
  virtual void SetPassword(const std::wstring& text) = 0;
  virtual void FocusAddress() = 0;
  virtual void FocusUserName() = 0;
  virtual void CloseDialog() = 0;
};

// Where the proxy values come from and go: by default the current user's
// profile; from the login dialog, the login procedure's (the account being
// entered may have no profile yet).
using ProfileReader = std::function<std::wstring(const std::wstring& name)>;
using ProfileWriter = std::function<void(const std::wstring& name, const std::wstring& value)>;
ProfileReader CurrentProfileReader();
ProfileWriter CurrentProfileWriter();

// Host and port of a system ProxyServer text ("host:port",
// "http=host:port;https=...", "socks=host:port").
struct HostPort {
  std::wstring host;
  std::wstring port;
};
HostPort SplitProxyServer(const std::wstring& text);

// A key press the port field keeps: digits, Backspace (8) and Escape (27).
bool AcceptPortKey(wchar_t key);

inline constexpr const wchar_t* kInternetSettingsKey =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

class ProxyPresenter {
 public:
  ProxyPresenter(ProxyView& view, ProfileWriter writer, platform::Registry& registry)
      : view_(view), writer_(std::move(writer)), registry_(registry) {}

  // Ok ("Apply Proxy Settings"); true when every value was written.
  bool OnApply();
  void OnReset();
  void OnClose() { view_.CloseDialog(); }
  // cmdGetIESetting.
  void OnGetIeSettings();

 private:
  ProxyView& view_;
  ProfileWriter writer_;
  platform::Registry& registry_;
};

}  // namespace tavrine::dialogs
