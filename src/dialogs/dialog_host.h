#pragma once
#include <cstdint>
#include <string>

namespace tavrine::dialogs {

// What the session window shows.
struct SessionInfo {
  std::wstring user;
  std::wstring server;
  double quota_bytes = 0;
  double used_bytes = 0;
  bool quota_known = false;
};
// The logged-in user, the server in use and the quota (one engine round trip).
SessionInfo LoadSessionInfo();
// "1.5 GB"-style text of a byte count.
std::wstring FormatBytes(double bytes);

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
