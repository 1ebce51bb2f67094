// login, logout, whoami, quota, message
#include <iostream>

#include "commands.h"
#include "console_login_view.h"
#include "contract/ui_commands.h"
#include "dialogs/login_flow.h"
#include "format.h"
#include "foundation/configuration.h"
#include "foundation/message_table.h"
#include "profile/profile_store.h"

namespace tavrine::cli {

int CommandLogin(const Arguments& args) {
  if (args.positional().size() != 1) {
    std::cerr << "usage: tavrine login USER [--password P | --password-stdin] [--key KEY | "
                 "--default-key] [--account NAME] [--server HOST]\n";
    return kExitUsage;
  }
  if (!foundation::LoadConfigurations()) {
    std::cerr << "error: no complete Configuration.ini beside the library\n";
    return kExitNotReady;
  }
  LoginFields fields;
  fields.user = Wide(args.positional()[0]);
  if (auto password = args.Value("password")) fields.password = Wide(*password);
  if (args.Has("password-stdin")) {
    std::string line;
    std::getline(std::cin, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    fields.password = Wide(line);
  }
  fields.key = Wide(args.Value("key").value_or(""));
  fields.default_key = args.Has("default-key");
  fields.account = Wide(args.Value("account").value_or(""));
  fields.server = Wide(args.Value("server").value_or(""));

  ConsoleLoginView view(fields);
  dialogs::LoginProcedure login(view, profile::CurrentUserName());
  Progress("Logging in as " + args.positional()[0] + "...");
  bool done = login.OnLogin();
  // An e-mail address with several accounts: the dialog offers the choice and
  // the user presses Login again.
  if (!done && !view.accounts().empty()) {
    EndProgress();
    std::cout << "Accounts of this address:";
    for (const auto& name : view.accounts()) std::cout << " " << Utf8(name);
    std::cout << "\nUsing " << Utf8(view.ChosenAccount()) << "\n";
    done = login.OnLogin();
  }
  EndProgress();
  if (!done) return Fail("login failed", login.result_code());
  std::cout << "Logged in as " << Utf8(profile::CurrentUserName()) << "\n";
  return kExitOk;
}

int CommandLogout(const Arguments&) {
  foundation::LoadConfigurations();
  profile::SetCurrentUserName(L"");
  std::cout << "Logged out\n";
  return kExitOk;
}

int CommandWhoami(const Arguments&) {
  if (!RequireSession()) return kExitNotReady;
  std::cout << Utf8(profile::CurrentUserName()) << "\n";
  return kExitOk;
}

int CommandQuota(const Arguments&) {
  if (!RequireSession()) return kExitNotReady;
  // Left untouched when no answer came; -1 when the answer held no figures.
  constexpr double kUntouched = -2;
  double max_size = kUntouched, used = kUntouched;
  Progress("Reading the quota...");
  contract::UICommands().W_GetQuota_Command(max_size, used);
  EndProgress();
  if (used == kUntouched) return Fail("the quota could not be read", -416);
  if (used < 0) {
    if (ReportEngineNotStarted()) return kExitFailed;
    std::cerr << "error: the service sent no quota figures\n";
    return kExitFailed;
  }
  double percent = max_size > 0 ? 100.0 * used / max_size : 0;
  char share[16];
  std::snprintf(share, sizeof share, "%.1f%%", percent);
  std::cout << "Used  " << PadLeft(HumanSize(used), 10) << "  (" << static_cast<long long>(used)
            << " bytes, " << share << ")\n";
  std::cout << "Quota " << PadLeft(HumanSize(max_size), 10) << "  ("
            << static_cast<long long>(max_size) << " bytes)\n";
  if (profile::GetUserProfile(L"freeuser") == L"1") std::cout << "Plan  free\n";
  return kExitOk;
}

int CommandMessage(const Arguments& args) {
  if (args.positional().size() != 1) {
    std::cerr << "usage: tavrine message CODE\n";
    return kExitUsage;
  }
  long code = 0;
  try {
    code = std::stol(args.positional()[0]);
  } catch (...) {
    std::cerr << "error: CODE must be a number\n";
    return kExitUsage;
  }
  contract::UICommands commands;
  std::wstring text, title;
  std::int16_t type = 0;
  if (commands.W_GetMessageString(static_cast<std::int32_t>(code), text) == 0) {
    std::cerr << "no message for code " << code << "\n";
    return kExitFailed;
  }
  commands.W_GetMessageInfo(static_cast<std::int32_t>(code), title, type);
  if (!title.empty()) std::cout << "[" << Utf8(title) << "] ";
  std::cout << Utf8(text) << "\n";
  return kExitOk;
}

}  // namespace tavrine::cli
