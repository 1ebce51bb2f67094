#include "dialogs/dialog_host.h"

#include "engine/engine_codes.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "operations/remote_operations.h"
#include "platform/module_folder.h"
#include "platform/services.h"
#include "profile/profile_store.h"

namespace tavrine::dialogs {

namespace {

thread_local DialogHost* installed_host = nullptr;

constexpr auto kCancelledByUser =
    static_cast<std::int16_t>(engine::Raw(engine::EngineCode::kOperationCancelled));

// The marker left when the user cancelled a login elsewhere; used once.
bool TakeLoginCancelledMarker() {
  const std::wstring marker = foundation::JoinPath(platform::ModuleFolder(), L"NDCancelled.txt");
  if (!foundation::FileExists(marker)) return false;
  foundation::DeleteFileIfExists(marker);
  return true;
}

}  // namespace

DialogHost& CurrentDialogHost() { return installed_host ? *installed_host : SystemDialogHost(); }

ScopedDialogHost::ScopedDialogHost(DialogHost& host) : saved_(installed_host) {
  installed_host = &host;
}
ScopedDialogHost::~ScopedDialogHost() { installed_host = saved_; }

std::int16_t RunLoginCommand(std::intptr_t owner) {
  const engine::Session session = engine::Session::OpenConfiguration();
  platform::CurrentUi().CloseWindowByTitle(session.configuration().caption + L" - Login");
  if (TakeLoginCancelledMarker()) return kCancelledByUser;
  return CurrentDialogHost().ShowLoginDialog(owner);
}

bool RunSessionCommand(std::intptr_t owner) { return CurrentDialogHost().ShowSessionWindow(owner, true); }

SessionInfo LoadSessionInfo() {
  SessionInfo info;
  const engine::Session session = engine::Session::OpenConfiguration();
  info.user = profile::CurrentUserName();
  if (info.user.empty()) info.user = profile::DefaultUserName();
  info.server = profile::GetUserProfile(L"serverip");
  if (info.server.empty()) info.server = session.configuration().domain_name;
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
