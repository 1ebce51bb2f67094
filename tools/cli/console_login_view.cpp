#include "console_login_view.h"

#include <iostream>

#include "platform/path.h"

namespace tavrine::cli {

std::wstring ConsoleLoginView::ChosenAccount() {
  if (!fields_.account.empty()) return fields_.account;
  return accounts_.empty() ? L"" : accounts_.front();
}

dialogs::KeyChoice ConsoleLoginView::ShowEncKeyOption() {
  if (fields_.default_key) return {true, L"DEF"};
  if (fields_.key.empty()) {
    std::cerr << "This account has no encryption key yet: pass --default-key or --key KEY.\n";
    return {false, L""};
  }
  return {true, fields_.key};
}

dialogs::KeyChoice ConsoleLoginView::ShowEncryptionPsd() {
  // A wrong key would be asked for again and again; the command line has only one.
  if (fields_.key.empty() || ++password_asks_ > 1) {
    std::cerr << "The account's encryption password is needed: pass --key KEY.\n";
    return {false, L""};
  }
  return {true, fields_.key};
}

std::intptr_t ConsoleLoginView::OpenWebPage(const std::wstring& address) {
  std::cerr << "See " << platform::WideToUtf8(address) << "\n";
  return 33;  // as if the browser opened it
}

}  // namespace tavrine::cli
