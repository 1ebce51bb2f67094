#include "engine/session.h"

#include <gtest/gtest.h>

#include "support/install_folder.h"

namespace tavrine::engine {
namespace {

// A session keeps what it loaded; a later load on the thread publishes its own
// for the layers below, and only an explicit reload moves the session.
TEST(Session, KeepsItsConfigurationWhenALaterCallLoadsAnother) {
  testing::InstallFolder install;
  install.WriteConfiguration(testing::StandardConfiguration("EngineTimeoutSeconds=81\r\n"));
  Session first = Session::OpenConfiguration();
  install.WriteConfiguration(testing::StandardConfiguration("EngineTimeoutSeconds=82\r\n"));
  const Session second = Session::OpenConfiguration();

  EXPECT_EQ(first.configuration().engine_timeout_seconds, 81u);
  EXPECT_EQ(second.configuration().engine_timeout_seconds, 82u);
  EXPECT_EQ(foundation::LoadedConfiguration().engine_timeout_seconds, 82u);
  first.Reload();
  EXPECT_EQ(first.configuration().engine_timeout_seconds, 82u);
}

}  // namespace
}  // namespace tavrine::engine
