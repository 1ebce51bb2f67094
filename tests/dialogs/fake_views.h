#pragma once
#include <deque>
#include <string>
#include <vector>

#include "dialogs/login_flow.h"
#include "dialogs/proxy_settings.h"

namespace tavrine::testing {

// frmLogin without a window: fields the test fills, and a record of what the
// procedure did to them.
class FakeLoginView : public dialogs::LoginView {
 public:
  std::wstring user_name;
  std::wstring password = L"pw";
  std::wstring server = L"localhost";
  bool remember = true;
  bool auto_reconnect = false;
  bool choice_shown = false;
  std::wstring chosen;
  std::vector<std::wstring> choice_names;
  bool locked = false;
  int lock_count = 0;
  bool closed = false;
  std::wstring focus;  // "user", "password", "password+select"
  std::deque<dialogs::KeyChoice> key_option_answers;
  std::deque<dialogs::KeyChoice> psd_answers;
  int key_option_shows = 0;
  int psd_shows = 0;
  std::deque<std::intptr_t> browser_answers;
  std::vector<std::wstring> opened_pages;

  std::wstring UserNameText() override { return user_name; }
  bool AccountChoiceShown() override { return choice_shown; }
  std::wstring ChosenAccount() override { return chosen; }
  std::wstring PasswordText() override { return password; }
  bool RememberChecked() override { return remember; }
  void SetRememberChecked(bool checked) override { remember = checked; }
  bool AutoReconnectChecked() override { return auto_reconnect; }
  std::wstring ServerText() override { return server; }
  void SetLocked(bool value) override {
    locked = value;
    if (value) ++lock_count;
  }
  void FocusUserName() override { focus = L"user"; }
  void FocusPassword(bool select_all) override { focus = select_all ? L"password+select" : L"password"; }
  void ShowAccountChoice(const std::vector<std::wstring>& names) override {
    choice_shown = true;
    choice_names = names;
    chosen = names.empty() ? L"" : names.front();
  }
  dialogs::KeyChoice ShowEncKeyOption() override {
    ++key_option_shows;
    return Next(key_option_answers);
  }
  dialogs::KeyChoice ShowEncryptionPsd() override {
    ++psd_shows;
    return Next(psd_answers);
  }
  std::intptr_t OpenWebPage(const std::wstring& address) override {
    opened_pages.push_back(address);
    return browser_answers.empty() ? 42 : Next(browser_answers);
  }
  void CloseDialog() override { closed = true; }

 private:
  // The next scripted answer; past the script, a closed dialog.
  template <class T>
  static T Next(std::deque<T>& answers) {
    if (answers.empty()) return {};
    T answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

// Proxysetting without a window, filled as a user with an HTTP proxy would.
class FakeProxyView : public dialogs::ProxyView {
 public:
  bool enabled = true, http = true, socks = false, auth = false;
  std::wstring address = L"proxy.local", port = L"8080", user, password;
  std::wstring focus;
  bool ProxyEnabled() override { return enabled; }
  void SetProxyEnabled(bool checked) override { enabled = checked; }
  bool HttpSelected() override { return http; }
  bool SocksSelected() override { return socks; }
  std::wstring Address() override { return address; }
  void SetAddress(const std::wstring& text) override { address = text; }
  std::wstring Port() override { return port; }
  void SetPort(const std::wstring& text) override { port = text; }
  bool AuthChecked() override { return auth; }
  std::wstring UserName() override { return user; }
  void SetUserName(const std::wstring& text) override { user = text; }
  std::wstring Password() override { return password; }
  void SetPassword(const std::wstring& text) override { password = text; }
  void FocusAddress() override { focus = L"address"; }
  void FocusUserName() override { focus = L"user"; }
  void CloseDialog() override {}  // the presenter never closes it
};

}  // namespace tavrine::testing
