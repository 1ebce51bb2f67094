#include "dialogs/login_flow.h"

#include <algorithm>
#include <stdexcept>

#include "dialogs/dialog_texts.h"
#include "engine/engine_call.h"
#include "engine/exchange_folder.h"
#include "engine/ip_resolve.h"
#include "engine/result_file.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/message_table.h"
#include "foundation/shared_state.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "platform/module_folder.h"
#include "platform/services.h"
#include "profile/character_shift.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"
#include "profile/user_list.h"
#include "profile/user_name_ini.h"

namespace tavrine::dialogs {

namespace {

using foundation::JoinPath;
using foundation::LoadedConfiguration;
using foundation::ThreadState;
using foundation::Trace;

constexpr const wchar_t* kMachineCode = L"MACHINECODEREADONLY";
constexpr auto kNoConnectionCode =
    static_cast<std::int16_t>(engine::Raw(engine::EngineCode::kNoConnection));
constexpr const wchar_t* kSupportEmail = L"support@tavrine.com";
constexpr const wchar_t* kProSignupPage = L"https://www.tavrine.com/tavrine/jsp/tve_prosignup.jsp";
constexpr const wchar_t* kProxyValueNames[] = {L"Proxyset",  L"proxytypehttp", L"proxytypesocks",
                                               L"ProxyName", L"ProxyPort",     L"ProxyAuthOn",
                                               L"ProxyUser", L"ProxyPass"};

struct MessageRow {
  LoginMessage key;
  int id;
  const wchar_t* english;
};

// The ids of the login messages in the language tables.
constexpr MessageRow kMessages[] = {
    {LoginMessage::kUserNameMissing, 760, L"Enter your Username/email address."},
    {LoginMessage::kPasswordMissing, 761, L"Enter your password."},
    {LoginMessage::kBadEmail, 1002, L"Enter a valid email address and try again."},
    {LoginMessage::kBadUserName, 843, L"Enter your correct Tavrin Username."},
    {LoginMessage::kWrongPassword, 719, L"Enter the correct Password and try again."},
    {LoginMessage::kMaintenance, 495, L"Server is under maintanance"},
    {LoginMessage::kNotActivated, 838,
     L"Activate your Tavrin account by clicking on the link provided in the email. If you have "
     L"not received the same, email us at "},
    {LoginMessage::kNoLongerActive, 829, L"Your Tavrin account is no longer active."},
    {LoginMessage::kCriticalException, 830,
     L"Tavrin has encountered a critical exception. It is possible that your Operating System "
     L"does not support 128-bit SSL encryption or is running on Internet Explorer below 6.  "
     L"Upgrade and try again."},
    {LoginMessage::kCannotConnect, 683, L"Unable to connect to the server. Try later."},
    {LoginMessage::kCriticalUpdate, 718,
     L"A critical update is being performed on our server. Try later."},
    {LoginMessage::kOtherComputer, 720,
     L"This account is active on another computer. Do you want to register it on this system?"},
    {LoginMessage::kConnectivity, 722, L"Check your Internet connectivity settings and try again."},
    {LoginMessage::kProxy, 723,
     L"Verify the proxy IP address, port number and authentication details and try again."},
    {LoginMessage::kBackupRunning, 1268,
     L"You can not delete the selected files/folders as a backup operation is in progress for the "
     L"same account. Please try again later."},
    {LoginMessage::kReinstall, 1291,
     L"Tavrin could not be installed successfully on your computer. Reinstall the application."},
    {LoginMessage::kSeveralAccounts, 791,
     L"There are multiple accounts associated with this email address. Choose the username with "
     L"which you want to login."},
};

std::wstring MacAccountText() {
  return std::wstring(
             L"This is a Mac account. The Mac and Windows accounts are not inter-operable.") +
         L"\r\n" + L"You need to sign up for a windows specific " +
         LoadedConfiguration().product_name +
         L" account. To proceed, click the 'OK' button. This takes you to the sign up page from "
         L"where you can create an account." +
         L"\r\n" + L"Alternately, visit " + kProSignupPage + L" to sign up for an account.";
}

void ShowStop(const foundation::Configuration& configuration, const std::wstring& text,
              const std::wstring& title) {
  platform::CurrentUi().ShowMessageBox(text, title.empty() ? configuration.message_title : title,
                                       platform::kMbOk | platform::kMbIconStop);
}

std::wstring BoolText(bool value) { return value ? L"1" : L"0"; }

// The account names of an e-mail address; a name that could not be a
// profile or a folder is left out, as if the engine had not sent it.
std::vector<std::wstring> SplitAccounts(const std::wstring& list) {
  std::vector<std::wstring> names;
  std::size_t start = 0;
  while (start <= list.size()) {
    std::size_t end = list.find(kAccountSeparator, start);
    if (end == std::wstring::npos) end = list.size();
    std::wstring name = foundation::Trim(list.substr(start, end - start));
    if (profile::IsSafeName(name)) names.push_back(name);
    start = end + 1;
  }
  return names;
}

engine::ProxySettings ProxyFromValues(const std::map<std::wstring, std::wstring>& values) {
  auto value = [&](const wchar_t* name) {
    auto it = values.find(name);
    return it == values.end() ? std::wstring() : it->second;
  };
  engine::ProxySettings proxy;
  proxy.Proxyenabled = foundation::ParseInt32(value(L"Proxyset")).value_or(0);
  proxy.httpopt_Item = foundation::ParseInt32(value(L"proxytypehttp")).value_or(0) != 0;
  proxy.socksopt_Item = foundation::ParseInt32(value(L"proxytypesocks")).value_or(0) != 0;
  proxy.IPText = value(L"ProxyName");
  proxy.ProxyPort = value(L"ProxyPort");
  proxy.sUsername = value(L"ProxyUser");
  proxy.sPassword = value(L"ProxyPass");
  return proxy;
}

}  // namespace

std::wstring LoginProgressFile() { return JoinPath(platform::ModuleFolder(), L"LoginProgress.txt"); }

std::wstring LoginMessageText(LoginMessage message) {
  if (message == LoginMessage::kMacAccount) return MacAccountText();
  for (const auto& row : kMessages) {
    if (row.key != message) continue;
    std::wstring text = LocalText(row.id, row.english);
    if (message == LoginMessage::kNotActivated) text += kSupportEmail;
    return text;
  }
  return L"";
}

std::optional<LoginMessage> MessageForCode(std::int32_t code, LoginCall call,
                                           bool entry_is_email) {
  using M = LoginMessage;
  using enum engine::EngineCode;
  using engine::Raw;
  switch (code) {
    case Raw(kUserNameUnknown):
    case Raw(kInvalidUserName):
      return entry_is_email ? M::kBadEmail : M::kBadUserName;
    case Raw(kUserDoesNotExist):
      return M::kMacAccount;
    case Raw(kPasswordChanged):
      return M::kWrongPassword;
    case Raw(kWrongEncryptionKey):
      if (call == LoginCall::kCompleteSession) return std::nullopt;
      break;
    case Raw(kNetworkFailure):
      return M::kConnectivity;
    case Raw(kProxyAuthenticationRequired):
    case Raw(kProxyCredentialsRefused):
    case Raw(kProxyUnreachable):
      return M::kProxy;
    case Raw(kRestoreCancelled):
      return M::kOtherComputer;
    case Raw(kCryptNotSupported):
      return M::kCriticalException;
    case Raw(kReinstall):
      return M::kReinstall;
    case Raw(kMachineNotRegistered):
      if (call == LoginCall::kCompleteSession) return std::nullopt;
      break;
    case Raw(kNotActivated):
      return M::kNotActivated;
    case Raw(kAccountCancelled):
    case Raw(kNoLongerActive):
      return M::kNoLongerActive;
    case Raw(kMaintenance):
      return M::kCriticalUpdate;
    case Raw(kCleanupInProgress):
      return M::kMaintenance;
    case Raw(kNotAnAddress):
      if (call == LoginCall::kResolveEmail) return M::kBadEmail;
      break;
    case Raw(kBackupRunning):
      return M::kBackupRunning;
    default:
      break;
  }
  return M::kCannotConnect;
}

LoginProcedure::LoginProcedure(LoginView& view, std::wstring opened_user)
    : view_(view),
      configuration_(foundation::LoadedConfiguration()),
      opened_user_(std::move(opened_user)) {}

bool LoginProcedure::OnLogin() {
  // The dialog stays open after any failure: it is traced and shown as "cannot connect".
  try {
    logged_in_ = Run();
  } catch (...) {
    foundation::TraceException(L"frmLogin", L"Login_Click", foundation::DescribeCurrentException());
    Fail(LoginMessage::kCannotConnect);
    logged_in_ = false;
  }
  return logged_in_;
}

void LoginProcedure::Unlock() {
  view_.SetLocked(false);
  foundation::DeleteFileIfExists(LoginProgressFile());
}

void LoginProcedure::Fail(std::optional<LoginMessage> message, const std::wstring& title) {
  Unlock();
  if (!message) return;
  if (*message == LoginMessage::kMacAccount) {
    ShowMacAccount();
    return;
  }
  ShowStop(configuration_, LoginMessageText(*message), title);
}

void LoginProcedure::ShowMacAccount() {
  int answer = platform::CurrentUi().ShowMessageBox(MacAccountText(), configuration_.message_title,
                                                    platform::kMbOk | platform::kMbIconStop);
  if (answer != 1) return;  // the box could not be shown
  const std::wstring page = LanguageLink(configuration_.signup_link);
  if (view_.OpenWebPage(page) <= 32) view_.OpenWebPage(page);
}

std::wstring LoginProcedure::EnteredUser() const {
  return foundation::Trim(view_.AccountChoiceShown() ? view_.ChosenAccount()
                                                     : view_.UserNameText());
}

std::wstring LoginProcedure::ProxyValue(const std::wstring& name) const {
  if (auto it = pending_proxy_.find(name); it != pending_proxy_.end()) return it->second;
  auto store = profile::ProfileStore::ForCurrentInstallation();
  const std::wstring entered = EnteredUser();
  // An account without a proxy of its own takes the one of the active profile.
  if (!store.GetForUser(entered, L"Proxyset").empty()) return store.GetForUser(entered, name);
  return store.Get(name);
}

void LoginProcedure::SetProxyValue(const std::wstring& name, const std::wstring& value) {
  pending_proxy_[name] = value;
  auto store = profile::ProfileStore::ForCurrentInstallation();
  const std::wstring entered = EnteredUser();
  if (!store.GetForUser(entered, L"username").empty()) store.UpdateForUser(entered, name, value);
}

std::wstring LoginProcedure::RandomNumber() const {
  std::wstring random = profile::ProfileStore::ForCurrentInstallation().GetForUser(user_, L"random");
  if (random.empty()) random = profile::ReadStoredRandomNumber();
  if (random.empty()) random = L"Does not exist";
  return random;
}

void LoginProcedure::LoadStoredKey() {
  auto store = profile::ProfileStore::ForCurrentInstallation();
  enc_password_ = store.GetForUser(user_, L"encpasswordnew");
  if (enc_password_.empty()) enc_password_ = store.GetForUser(user_, L"encpassword");
  status_key_ = store.GetForUser(user_, L"StatusKey");
}

bool LoginProcedure::Run() {
  configuration_ = engine::Session::OpenConfiguration().configuration();
  auto store = profile::ProfileStore::ForCurrentInstallation();

  // 1. The entered user's stored values.
  const bool from_combo = view_.AccountChoiceShown();
  entry_ = foundation::Trim(view_.UserNameText());
  user_ = EnteredUser();
  email_resolved_ = from_combo;
  email_ = entry_.find(L'@') != std::wstring::npos ? entry_ : L"";
  LoadStoredKey();
  if (!profile::SameUserName(user_, opened_user_)) {
    Trace(from_combo ? L"User name changed in combo" : L"User name changed");
    std::wstring remember = store.GetForUser(user_, L"remunamepwd");
    if (!remember.empty()) view_.SetRememberChecked(remember != L"0");
  }

  // 2. Input.
  if (user_.empty()) {
    ShowStop(configuration_, LoginMessageText(LoginMessage::kUserNameMissing), L"");
    view_.FocusUserName();
    return false;
  }
  password_ = view_.PasswordText();
  if (password_.empty()) {
    ShowStop(configuration_, LoginMessageText(LoginMessage::kPasswordMissing), L"");
    view_.FocusPassword(false);
    return false;
  }
  // The name becomes a profile key and a folder: one that could leave them
  // ("bob.", "con", "a/b") is no account of ours. Checked after the two
  // missing-input checks, so that those keep their order and messages.
  if (!profile::IsSafeName(user_)) {
    ShowStop(
        configuration_,
        LoginMessageText(email_.empty() ? LoginMessage::kBadUserName : LoginMessage::kBadEmail),
        L"");
    view_.FocusUserName();
    return false;
  }

  // 3. Server address and port.
  if (foundation::Trim(view_.ServerText()) == L"localhost") {
    address_ = L"localhost";
  } else {
    std::wstring host = foundation::FileExists(foundation::ConfigurationFilePath())
                            ? foundation::ReadConfigValue(L"ConnectionInfo", L"DomainName")
                            : std::wstring(foundation::kDefaultServerHost);
    address_ = engine::ResolveHostAddress(host);
    if (address_.empty()) address_ = configuration_.current_address;
  }
  // The account's stored port, as every other request sends it; a first login
  // has none and takes the configured one.
  port_ = store.GetForUser(user_, L"port");
  if (port_.empty()) port_ = store.GetForUser(user_, L"OutPort");
  if (port_.empty()) port_ = configuration_.port;
  Trace(L"New3 : g_IPAddress : " + address_);
  Trace(L"New3 : OutgoingPort : " + port_);

  for (const wchar_t* name : kProxyValueNames) proxy_values_[name] = ProxyValue(name);
  proxy_ = ProxyFromValues(proxy_values_);

  // 4. Lock.
  view_.SetLocked(true);
  foundation::DeleteFileIfExists(LoginProgressFile());

  const bool is_email = !email_.empty();
  // 5. Encryption status of a plain user name or an already resolved address.
  if (!is_email || email_resolved_) {
    if (!CheckDefEncStatus()) return false;
  } else {
    // 6. E-mail address to account names; with one the login goes on with it.
    bool go_on = false;
    if (!ResolveEmail(go_on) || !go_on) return false;
  }

  if (!Login()) return false;
  if (!CompleteSession()) return false;
  Save();
  ThreadState().renew_random_permitted = true;
  view_.CloseDialog();
  return true;
}

LoginProcedure::CallResult LoginProcedure::RunCall(LoginCall call,
                                                   const std::wstring& random_field) {
  CallResult result;
  const engine::ScopedExchangeFolder exchange(engine::MakeExchangeFolder(platform::ModuleFolder()));
  const std::wstring& folder = exchange.path();
  if (folder.empty()) {
    Trace(L"frmLogin :: exchange folder could not be created");
    return result;
  }
  const std::vector<std::wstring> request = [&] {
    engine::ProxyBlock proxy = engine::ProxyArguments(proxy_, random_field);
    return std::vector<std::wstring>{address_,
                                     port_,
                                     profile::ShiftCharacters(user_),
                                     profile::ShiftCharacters(password_),
                                     profile::ShiftCharacters(enc_password_),
                                     proxy.AsciiRandom,
                                     std::to_wstring(proxy.proxyexistsflag),
                                     std::to_wstring(proxy.proxytype),
                                     proxy.proxyserverip,
                                     proxy.proxyserverport,
                                     proxy.proxyserveruname,
                                     proxy.proxyserverpwd};
  }();
  engine_called_ = true;
  engine::RetryPolicy policy;
  policy.attempts = kLoginAttempts;
  policy.rules.push_back({.codes = engine::codes::kTransientLogin,
                          .pause_ms = kLoginRetryPauseMs,
                          .pause_after_last = false,
                          .pump_around_pause = true,
                          // What the dialog reports while the attempts go on.
                          .before_pause = [this] { last_code_ = kNoConnectionCode; }});
  const engine::EngineCallSetup setup{.program = engine::ConfiguredEngineProgram(),
                                    .command = static_cast<int>(call),
                                    .folder = folder};
  auto outcome = engine::RunWithRetry(policy, [&](const engine::EngineResult&) {
    return std::optional<engine::EngineResult>(
        engine::CallEngine(setup, [&](const std::wstring& into) {
          engine::DeleteExchangeFiles(into);
          foundation::WriteUtf16Lines(JoinPath(into, L"DLLInput.txt"), request);
        }));
  });
  result.code = outcome.last.raw();
  last_code_ = static_cast<std::int16_t>(std::clamp(result.code, -32768, 32767));
  if (auto lines = foundation::ReadAnsiLines(JoinPath(folder, L"DLLOutput1.txt"))) {
    result.output1 = std::move(*lines);
  }
  return result;
}

bool LoginProcedure::CheckDefEncStatus() {
  Trace(L"Checking for account status calling CheckDefEncStatus");
  const std::int32_t code = RunCall(LoginCall::kEncryptionStatus, RandomNumber()).code;
  Trace(L"Return value from 110 calling : " + std::to_wstring(code));
  bool go_on = false;
  switch (code) {
    case engine::Raw(engine::EngineCode::kKeyStatusEmpty): {
      Trace(L"Entered into ENC_STATUS_EMPTY");
      KeyChoice choice = view_.ShowEncKeyOption();
      go_on = choice.accepted;
      if (go_on) enc_password_ = choice.key;
      break;
    }
    case engine::Raw(engine::EngineCode::kKeyStatusDefault):
      Trace(L"Entered into ENC_STATUS_DEFAULT");
      go_on = true;
      break;
    case engine::Raw(engine::EngineCode::kKeyStatusPrivate): {
      Trace(L"Entered into ENC_STATUS_PRIVATE");
      KeyChoice choice = view_.ShowEncryptionPsd();
      go_on = choice.accepted;
      if (go_on) enc_password_ = choice.key;
      break;
    }
    default:
      Trace(L"bEncKeyStausRetVal value : False");
      Fail(MessageForCode(code, LoginCall::kEncryptionStatus, !email_.empty()));
      return false;
  }
  status_key_ = std::to_wstring(code);
  Trace(std::wstring(L"bEncKeyStausRetVal value : ") + (go_on ? L"True" : L"False"));
  if (!go_on) Unlock();
  return go_on;
}

bool LoginProcedure::ResolveEmail(bool& go_on) {
  go_on = false;
  user_ = entry_;
  CallResult result = RunCall(LoginCall::kResolveEmail, RandomNumber());
  if (result.code != engine::EngineCode::kSuccessWithData &&
      result.code != engine::EngineCode::kAddressResolved) {
    if (engine::IsIn(result.code, engine::codes::kResolveNetwork)) {
      Fail(LoginMessage::kCannotConnect);
    } else {
      Fail(MessageForCode(result.code, LoginCall::kResolveEmail, true));
    }
    return false;
  }
  // The engine answers in the address's profile.
  auto store = profile::ProfileStore::ForCurrentInstallation();
  if (store.GetForUser(entry_, L"display").empty())
    store.UpdateForUser(entry_, L"display", L"true");
  std::vector<std::wstring> names = SplitAccounts(store.GetForUser(entry_, L"InteractiveLists"));
  if (names.empty()) {
    Fail(LoginMessage::kBadEmail);
    return false;
  }
  Trace(L"Email Id resolved");
  if (names.size() == 1) {
    user_ = names.front();
    // The address's profile holds no key of its own: the account's is sent and kept.
    LoadStoredKey();
    email_resolved_ = true;
    go_on = true;
    return true;
  }
  user_ = names.front();
  bool status = CheckDefEncStatus();
  Trace(L"Return Value from CheckDefEncKeyStatus");
  // A failed check leaves the text box, so the next press resolves the address again.
  if (!status) return false;
  Unlock();
  ShowStop(configuration_, LoginMessageText(LoginMessage::kSeveralAccounts), L"");
  view_.ShowAccountChoice(names);
  return true;
}

bool LoginProcedure::Login() {
  CallResult result = RunCall(LoginCall::kLogin, kMachineCode);
  if (result.code == engine::EngineCode::kCleanupInProgress) {
    Fail(LoginMessage::kMaintenance, configuration_.product_name + L" login failure");
    return false;
  }
  if (result.code <= 0) {
    Fail(MessageForCode(result.code, LoginCall::kLogin, !email_.empty()));
    if (result.code == engine::EngineCode::kPasswordChanged) view_.FocusPassword(true);
    return false;
  }
  // The account the engine logged in, when the dialog had no name.
  if (user_.empty() && !result.output1.empty()) user_ = foundation::Trim(result.output1.front());
  return true;
}

bool LoginProcedure::CompleteSession() {
  for (int asks = 0;;) {
    // The login's own request again, the machine code included.
    CallResult result = RunCall(LoginCall::kCompleteSession, kMachineCode);
    if (result.code > 0) return true;
    if (result.code == engine::EngineCode::kWrongEncryptionKey) {
      if (++asks > kMaxEncryptionPasswordAsks) {
        Unlock();
        ShowStop(configuration_, foundation::MessageText(result.code).value_or(L""), L"");
        return false;
      }
      KeyChoice choice = view_.ShowEncryptionPsd();
      if (!choice.accepted) {
        Unlock();
        return false;
      }
      enc_password_ = choice.key;
      continue;
    }
    if (result.code == engine::EngineCode::kMachineNotRegistered) {
      // Nothing to report; the next -505 of an operation may renew the number.
      ThreadState().renew_random_permitted = true;
      Fail(std::nullopt);
      return false;
    }
    Fail(MessageForCode(result.code, LoginCall::kCompleteSession, !email_.empty()));
    return false;
  }
}

void LoginProcedure::Save() {
  auto store = profile::ProfileStore::ForCurrentInstallation();
  // Every later operation reads the current profile: without it the account
  // would be logged in with nothing to work on.
  if (!store.SetCurrentUser(user_)) throw std::runtime_error("The user profile could not be saved");
  auto put = [&](const wchar_t* name, const std::wstring& value) {
    store.UpdateForUser(user_, name, value);
  };
  put(L"username", user_);
  put(L"password", password_);
  put(L"useremailid", email_);
  put(L"useremailidExist", BoolText(!email_.empty()));
  put(L"encpassword", enc_password_);
  put(L"encpasswordnew", enc_password_);
  put(L"serverip", address_);
  put(L"IPAddress", address_);
  put(L"port", port_);
  put(L"remunamepwd", BoolText(view_.RememberChecked()));
  put(L"StatusKey", status_key_);
  put(L"AutoReconnect", BoolText(view_.AutoReconnectChecked()));
  put(L"Interactive", L"1");
  if (store.GetForUser(user_, L"RealTimeBackup").empty()) put(L"RealTimeBackup", L"0");
  for (const auto& [name, value] : proxy_values_) put(name.c_str(), value);
  store.SetDefaultUser(user_);
  profile::AddToUserList(user_);
}

}  // namespace tavrine::dialogs
