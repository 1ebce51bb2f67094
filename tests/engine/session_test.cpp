#include "engine/session.h"

#include <gtest/gtest.h>

#include "support/install_folder.h"

namespace tavrine::engine {
namespace {

std::string WithCaption(const std::string& caption) {
  return "[ProductInfo]\r\nProductNumber=1\r\nProductName=Acme\r\nProductInstallationName=I\r\n"
         "ProductTreeViewName=T\r\nProductCaption=" +
         caption + "\r\n";
}

// A session keeps what it loaded; a later load on the thread publishes its own
// for the layers below, and only an explicit reload moves the session.
TEST(Session, KeepsItsConfigurationWhenALaterCallLoadsAnother) {
  testing::InstallFolder install;
  install.WriteConfiguration(WithCaption("First"));
  Session first = Session::OpenConfiguration();
  install.WriteConfiguration(WithCaption("Second"));
  const Session second = Session::OpenConfiguration();

  EXPECT_EQ(first.configuration().caption, L"First");
  EXPECT_EQ(first.configuration().failure_title, L"First failure");
  EXPECT_EQ(second.configuration().caption, L"Second");
  EXPECT_EQ(foundation::LoadedConfiguration().caption, L"Second");
  first.Reload();
  EXPECT_EQ(first.configuration().caption, L"Second");
}

}  // namespace
}  // namespace tavrine::engine
