#pragma once
// What an operation reads at its start: the configuration, the work root, the
// current user, the profile's request values and proxy. Opened once at the
// start of an operation and passed down.
#include <string>

#include "engine/connection.h"
#include "engine/proxy.h"
#include "foundation/configuration.h"

namespace tavrine::engine {

class Session {
 public:
  // Loads Configuration.ini, the work root, the profile values, the current
  // user and the proxy settings, in that order.
  static Session Open();

  // Loads Configuration.ini only: for the calls that read no profile values,
  // user or proxy settings.
  static Session OpenConfiguration();

  // Reads the configuration and the profile values again, for the places that
  // must see what another call (a silent login) changed meanwhile.
  void Reload();

  // Held by value: a later load on this thread does not change it.
  const foundation::Configuration& configuration() const { return configuration_; }
  Connection& connection() { return connection_; }
  const std::wstring& work_root() const { return work_root_; }
  const std::wstring& current_user() const { return current_user_; }
  const ProxySettings& proxy() const { return proxy_; }
  std::wstring UserFolder() const { return connection_.UserFolder(); }

 private:
  Session() = default;
  void LoadConfiguration();

  foundation::Configuration configuration_;
  Connection connection_;
  std::wstring work_root_;
  std::wstring current_user_;
  ProxySettings proxy_;
};

}  // namespace tavrine::engine
