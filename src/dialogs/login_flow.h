#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine_codes.h"
#include "engine/proxy.h"
#include "foundation/configuration.h"

namespace tavrine::dialogs {

// What an encryption dialog hands back: accepted or not, and the key.
struct KeyChoice {
  bool accepted = false;
  std::wstring key;
};

// The login dialog (frmLogin) as the login procedure sees it. The Win32
// window implements it; tests fake it.
class LoginView {
 public:
  virtual ~LoginView() = default;
  virtual std::wstring UserNameText() = 0;     // txtUserName
  virtual bool AccountChoiceShown() = 0;       // ComboUserName in place of txtUserName
  virtual std::wstring ChosenAccount() = 0;    // ComboUserName
  virtual std::wstring PasswordText() = 0;     // txtPassword
  virtual bool RememberChecked() = 0;          // remunamepwd
  virtual void SetRememberChecked(bool checked) = 0;
  virtual bool AutoReconnectChecked() = 0;     // auto_Reconnect
  virtual std::wstring ServerText() = 0;       // schipaddress
  // Disables (or enables again) Login, Cancel, advanced and ComboUserName.
  virtual void SetLocked(bool locked) = 0;
  virtual void FocusUserName() = 0;
  virtual void FocusPassword(bool select_all) = 0;
  // Hides txtUserName, shows ComboUserName holding `names`, the first selected.
  virtual void ShowAccountChoice(const std::vector<std::wstring>& names) = 0;
  // frmEncKeyOption and EncryptionPsd, modal over the login dialog.
  virtual KeyChoice ShowEncKeyOption() = 0;
  virtual KeyChoice ShowEncryptionPsd() = 0;
  // Opens a page in the default browser; the shell's result (above 32: opened).
  virtual std::intptr_t OpenWebPage(const std::wstring& address) = 0;
  // Ends the dialog after a successful login.
  virtual void CloseDialog() = 0;
};

enum class LoginMessage {
  kUserNameMissing,
  kPasswordMissing,
  kBadEmail,
  kBadUserName,
  kWrongPassword,
  kMaintenance,
  kNotActivated,
  kNoLongerActive,
  kCriticalException,
  kCannotConnect,
  kCriticalUpdate,
  kOtherComputer,
  kConnectivity,
  kProxy,
  kBackupRunning,
  kReinstall,
  kSeveralAccounts,
  kMacAccount,
};

// The login messages, each from the language table by its number with the
// English text as fallback, "Tavrin" replaced by the product name.
std::wstring LoginMessageText(LoginMessage message);

// Which engine call a result came from; some codes mean something to one only.
enum class LoginCall { kEncryptionStatus = 110, kCompleteSession = 111, kLogin = 116, kResolveEmail = 117 };

// The message a failure code shows; nullopt for the codes that show none
// (-505 after 111) or that are handled on their own (-404 after 111).
std::optional<LoginMessage> MessageForCode(std::int32_t code, LoginCall call, bool entry_is_email);

inline constexpr int kLoginAttempts = 3;
inline constexpr std::uint32_t kLoginRetryPauseMs = 5000;
// After this many wrong encryption passwords the login gives up.
inline constexpr int kMaxEncryptionPasswordAsks = 5;
inline constexpr auto kLoginCancelledCode =
    static_cast<std::int16_t>(engine::Raw(engine::EngineCode::kLoginCancelled));
// Separates the user names of an e-mail address in its InteractiveLists value.
inline constexpr wchar_t kAccountSeparator = L'|';

// The login procedure behind frmLogin's Login button.
class LoginProcedure {
 public:
  // `opened_user` is the name the dialog showed when it opened.
  LoginProcedure(LoginView& view, std::wstring opened_user);

  // True when the account is logged in, the profile saved and the dialog closed.
  bool OnLogin();
  // The dialog was closed without a login. After an engine call its code
  // stays the result, so the caller learns why the login did not happen.
  void OnCancel() {
    if (!engine_called_) last_code_ = kLoginCancelledCode;
  }

  // The last engine result (-416 while network attempts go on); "Login
  // cancelled" when the dialog was closed before any engine call.
  std::int16_t result_code() const { return last_code_; }
  bool logged_in() const { return logged_in_; }

  // The proxy dialog opened from this login reads and writes its values here.
  // A first login has no profile to write to yet: the values wait and are
  // saved with the account. An account that has a profile gets them at once.
  std::wstring ProxyValue(const std::wstring& name) const;
  void SetProxyValue(const std::wstring& name, const std::wstring& value);

 private:
  struct CallResult {
    std::int32_t code = 0;
    std::vector<std::wstring> output1;  // DLLOutput1.txt, when the engine left one
  };

  bool Run();
  CallResult RunCall(LoginCall call, const std::wstring& random_field);
  bool CheckDefEncStatus();
  bool ResolveEmail(bool& go_on);
  bool Login();
  bool CompleteSession();
  // Throws when the account's profile cannot be made the current one.
  void Save();
  // Unlocks the dialog, removes LoginProgress.txt, then shows the message.
  void Fail(std::optional<LoginMessage> message, const std::wstring& title = L"");
  void Unlock();
  void ShowMacAccount();
  std::wstring RandomNumber() const;
  // The encryption password and key status stored for user_.
  void LoadStoredKey();
  // txtUserName, or ComboUserName while it is shown.
  std::wstring EnteredUser() const;

  LoginView& view_;
  // What the dialog loaded, then what each login loads at its start; the
  // boxes and requests of that login read it.
  foundation::Configuration configuration_;
  std::wstring opened_user_;
  std::wstring entry_;        // txtUserName as typed (trimmed)
  std::wstring user_;         // the account name sent to the engine
  std::wstring password_;
  std::wstring enc_password_;
  std::wstring status_key_;
  std::wstring address_;
  std::wstring port_;
  std::wstring email_;        // the e-mail address the account was found by
  bool email_resolved_ = false;
  std::map<std::wstring, std::wstring> pending_proxy_;  // set in the proxy dialog
  std::map<std::wstring, std::wstring> proxy_values_;   // in use for this login
  engine::ProxySettings proxy_;
  std::int16_t last_code_ = 0;
  bool engine_called_ = false;
  bool logged_in_ = false;
};

// LoginProgress.txt in the application folder.
std::wstring LoginProgressFile();

}  // namespace tavrine::dialogs
