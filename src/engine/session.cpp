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

void Session::Reload() {
  foundation::LoadConfigurations();
  connection_.LoadProfileValues();
}

}  // namespace tavrine::engine
