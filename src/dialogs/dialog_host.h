#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "operations/last_quota.h"

namespace tavrine::dialogs {

// What the session window shows.
struct SessionInfo {
  std::wstring user;
  std::wstring server;
  std::optional<operations::QuotaReading> quota;
};
// The logged-in user, the server in use and the last quota read on this
// thread; without one yet, the quota is read through the engine once.
SessionInfo LoadSessionInfo();
// Reads the quota again through the engine (failures show their usual
// messages) and returns the last reading, the new one when it succeeded.
std::optional<operations::QuotaReading> RefreshQuota();

// The login command: closes a login window still open, honours a login
// cancelled elsewhere (-424, once), else shows the login dialog over `owner`
// and returns its result code.
std::int16_t RunLoginCommand(std::intptr_t owner);
// The session command: shows the session window modally; true when it was shown.
bool RunSessionCommand(std::intptr_t owner);

// The windows the UI commands open. The Win32 layer provides the real one;
// tests install their own with ScopedDialogHost.
class DialogHost {
 public:
  virtual ~DialogHost() = default;
  // Shows frmLogin modally over `owner` (a window handle, 0 for none) and
  // returns the dialog's result code.
  virtual std::int16_t ShowLoginDialog(std::intptr_t owner) = 0;
  // Shows the session window; `modal` as the Show method's argument. True when it was shown.
  virtual bool ShowSessionWindow(std::intptr_t owner, bool modal) = 0;
};

// The platform's host: real windows on Windows, none elsewhere.
DialogHost& SystemDialogHost();
DialogHost& CurrentDialogHost();

class ScopedDialogHost {
 public:
  explicit ScopedDialogHost(DialogHost& host);
  ~ScopedDialogHost();
  ScopedDialogHost(const ScopedDialogHost&) = delete;
  ScopedDialogHost& operator=(const ScopedDialogHost&) = delete;

 private:
  DialogHost* saved_;
};

}  // namespace tavrine::dialogs
