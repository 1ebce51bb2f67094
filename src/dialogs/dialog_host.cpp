#include "dialogs/dialog_host.h"

#include "foundation/settings.h"
#include "operations/remote_operations.h"
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
  info.quota = operations::LastQuota();
  if (!info.quota && !info.user.empty()) info.quota = RefreshQuota();
  return info;
}

std::optional<operations::QuotaReading> RefreshQuota() {
  engine::Session session = engine::Session::Open();
  operations::ReadQuota(session);
  return operations::LastQuota();
}

}  // namespace tavrine::dialogs
