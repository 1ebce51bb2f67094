#pragma once
#include <string>
#include <vector>

#include "dialogs/login_flow.h"

namespace tavrine::cli {

// The login dialog's fields filled from the command line.
struct LoginFields {
  std::wstring user;
  std::wstring password;
  std::wstring server;
  std::wstring account;       // which account of an e-mail address with several
  std::wstring key;           // encryption key or password, when the account asks
  bool default_key = false;   // a new account takes the default key
  bool remember = true;
};

class ConsoleLoginView : public dialogs::LoginView {
 public:
  explicit ConsoleLoginView(LoginFields fields) : fields_(std::move(fields)) {}

  std::wstring UserNameText() override { return fields_.user; }
  bool AccountChoiceShown() override { return !accounts_.empty(); }
  std::wstring ChosenAccount() override;
  std::wstring PasswordText() override { return fields_.password; }
  bool RememberChecked() override { return fields_.remember; }
  void SetRememberChecked(bool checked) override { fields_.remember = checked; }
  bool AutoReconnectChecked() override { return false; }
  std::wstring ServerText() override { return fields_.server; }
  void SetLocked(bool) override {}
  void FocusUserName() override {}
  void FocusPassword(bool) override {}
  void ShowAccountChoice(const std::vector<std::wstring>& names) override { accounts_ = names; }
  dialogs::KeyChoice ShowEncKeyOption() override;
  dialogs::KeyChoice ShowEncryptionPsd() override;
  std::intptr_t OpenWebPage(const std::wstring& address) override;
  void CloseDialog() override { closed_ = true; }

  const std::vector<std::wstring>& accounts() const { return accounts_; }
  bool closed() const { return closed_; }

 private:
  LoginFields fields_;
  std::vector<std::wstring> accounts_;
  bool closed_ = false;
  int password_asks_ = 0;
};

}  // namespace tavrine::cli
