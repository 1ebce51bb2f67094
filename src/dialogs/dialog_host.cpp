#include "dialogs/dialog_host.h"

#include <cstdio>

#include "foundation/settings.h"
#include "operations/cls_api_interface.h"
#include "profile/profile_store.h"

namespace tavrine::dialogs {

namespace {
thread_local DialogHost* installed_host = nullptr;
}

DialogHost& CurrentDialogHost() { return installed_host ? *installed_host : SystemDialogHost(); }

ScopedDialogHost::ScopedDialogHost(DialogHost& host) : saved_(installed_host) {
  installed_host = &host;
}
ScopedDialogHost::~ScopedDialogHost() { installed_host = saved_; }

SessionInfo LoadSessionInfo() {
  SessionInfo info;
  foundation::LoadConfigurations();
  info.user = profile::CurrentUserName();
  if (info.user.empty()) info.user = profile::DefaultUserName();
  info.server = profile::GetUserProfile(L"serverip");
  if (info.server.empty()) info.server = foundation::CurrentSettings().domain_name;
  if (!info.user.empty()) {
    double max_size = 0, used = 0;
    std::int16_t result = operations::clsAPI_Interface().API_GetQuota(max_size, used);
    info.quota_known = result == 0 && max_size > 0;
    info.quota_bytes = max_size;
    info.used_bytes = used;
  }
  return info;
}

std::wstring FormatBytes(double bytes) {
  static constexpr const wchar_t* kUnits[] = {L"bytes", L"KB", L"MB", L"GB", L"TB"};
  int unit = 0;
  while (bytes >= 1024 && unit < 4) {
    bytes /= 1024;
    ++unit;
  }
  wchar_t text[64];
  std::swprintf(text, 64, unit == 0 ? L"%.0f %ls" : L"%.2f %ls", bytes, kUnits[unit]);
  return text;
}

}  // namespace tavrine::dialogs
