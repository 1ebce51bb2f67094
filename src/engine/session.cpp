#include "engine/session.h"

namespace tavrine::engine {

Session Session::Open() {
  Session session;
  session.work_root_ = foundation::ComputeWorkRoot();
  session.Reload();
  session.current_user_ = session.connection_.CurrentUser();
  session.proxy_ = session.connection_.Proxy();
  return session;
}

Session Session::OpenConfiguration() {
  Session session;
  session.LoadConfiguration();
  return session;
}

void Session::Reload() {
  LoadConfiguration();
  connection_.LoadProfileValues();
}

// Loads over what this thread loaded last and publishes the result there, for
// the layers below that read no session (message texts, profile store).
void Session::LoadConfiguration() {
  foundation::LoadConfigurations();
  configuration_ = foundation::LoadedConfiguration();
}

}  // namespace tavrine::engine
