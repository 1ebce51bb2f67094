#include <gtest/gtest.h>

#include "foundation/configuration.h"
#include "foundation/trace_log.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "support/install_folder.h"

namespace tavrine::foundation {
namespace {

using testing::InstallFolder;

std::string Config(const std::string& product_info, const std::string& rest = "") {
  return "[ProductInfo]\r\n" + product_info + rest;
}

constexpr const char* kCompleteProductInfo =
    "ProductNumber=7\r\nProductName=Acme\r\nProductInstallationName=AcmeInst\r\n"
    "ProductTreeViewName=Acme Tree\r\nLanguage=German\r\nProductCaption=Acme Backup\r\n"
    "ExeGroup=Acme\r\n";

TEST(LoadConfigurations, CompleteFileFillsGlobalsAndDerivedTitles) {
  InstallFolder install;
  install.WriteConfiguration(Config(kCompleteProductInfo,
                                    "[ConnectionInfo]\r\nDomainName=srv.example\r\n"
                                    "IPAddress1=10.0.0.1\r\nIPAddress2=10.0.0.2\r\nPort=81\r\n"
                                    "[WebLink]\r\nLoginLink=http://l\r\n"
                                    "SignupLink=http://configured-signup\r\n"));
  ASSERT_TRUE(LoadConfigurations());
  const Configuration& s = LoadedConfiguration();
  EXPECT_EQ(s.product_number, 7);
  EXPECT_EQ(s.product_name_copy, L"Acme");
  EXPECT_EQ(s.language, L"German");
  EXPECT_EQ(s.caption, L"Acme Backup");
  EXPECT_EQ(s.client_program_name, L"AcmeClsClient.exe");
  EXPECT_EQ(s.message_title, L"Acme Backup");
  EXPECT_EQ(s.failure_title, L"Acme Backup failure");
  EXPECT_EQ(s.logon_failure_title, L"Acme Backup logon failure");
  EXPECT_EQ(s.current_host, L"srv.example");
  EXPECT_EQ(s.current_address, L"10.0.0.1");
  EXPECT_EQ(s.ip_address2, L"10.0.0.2");
  EXPECT_EQ(s.port, L"81");
  EXPECT_EQ(s.login_link, L"http://l");
  // The configured sign-up link never reaches the dialogs.
  EXPECT_EQ(s.signup_link, kFixedSignupLink);
  EXPECT_EQ(s.engine_timeout_seconds, kDefaultEngineTimeoutSeconds);
}

TEST(LoadConfigurations, ValidityRules) {
  const std::string names = "ProductInstallationName=I\r\nProductTreeViewName=T\r\n";
  const struct {
    const char* name;
    std::string ini;
    bool valid;
    const wchar_t* caption;
  } cases[] = {
      {"Tavrin needs no caption",
       Config("ProductNumber=1\r\nProductName=Tavrin\r\nProductCaption=Ignored\r\n" + names),
       true, L"Tavrin"},
      {"other names need a caption", Config("ProductNumber=1\r\nProductName=Other\r\n" + names),
       false, L""},
      {"product number 0", Config("ProductNumber=0\r\nProductName=Tavrin\r\n" + names), false,
       L"Tavrin"},
      {"missing tree-view name",
       Config("ProductNumber=3\r\nProductName=Tavrin\r\nProductInstallationName=I\r\n"), false,
       L"Tavrin"},
      {"missing installation name",
       Config("ProductNumber=3\r\nProductName=Tavrin\r\nProductTreeViewName=T\r\n"), false,
       L"Tavrin"},
      {"values are trimmed",
       Config("ProductNumber=  4 \r\nProductName=  Tavrin  \r\nProductInstallationName= I \r\n"
              "ProductTreeViewName=\tT\r\n"),
       true, L"Tavrin"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    InstallFolder install;
    install.WriteConfiguration(c.ini);
    EXPECT_EQ(LoadConfigurations(), c.valid);
    EXPECT_EQ(LoadedConfiguration().caption, c.caption);
  }
}

TEST(LoadConfigurations, WhatCannotBeReadKeepsTheEarlierGlobals) {
  InstallFolder install;
  LoadedConfiguration().product_name = L"Earlier";
  LoadedConfiguration().caption = L"Earlier caption";
  LoadedConfiguration().product_number = 9;
  EXPECT_FALSE(LoadConfigurations());  // no file at all
  EXPECT_EQ(LoadedConfiguration().product_name, L"Earlier");
  EXPECT_EQ(LoadedConfiguration().caption, L"Earlier caption");
  install.WriteConfiguration(Config("ProductNumber=seven\r\nProductName=Tavrin\r\n"
                                    "ProductInstallationName=I\r\nProductTreeViewName=T\r\n"));
  EXPECT_TRUE(LoadConfigurations());
  EXPECT_EQ(LoadedConfiguration().product_number, 9);
}

TEST(LoadConfigurations, EngineTimeoutIsConfigurableWhenPositive) {
  InstallFolder install;
  for (auto [text, seconds] : {std::pair{"5", 5u}, {"-3", kDefaultEngineTimeoutSeconds}}) {
    const std::string line = std::string("EngineTimeoutSeconds=") + text + "\r\n";
    install.WriteConfiguration(Config(kCompleteProductInfo, "[ConnectionInfo]\r\n" + line));
    LoadConfigurations();
    EXPECT_EQ(LoadedConfiguration().engine_timeout_seconds, seconds) << text;
  }
}

TEST(ComputeWorkRoot, FollowsVirtualPathAndEndsInASeparator) {
  InstallFolder install;
  const std::wstring sep(1, platform::kPathSeparator);
  EXPECT_EQ(ComputeWorkRoot(), install.wpath() + sep);

  install.WriteUserNameIni("[Registry]\r\nVirtualPath=  " +
                           platform::WideToAnsi(install.wpath() + sep + L"vroot") + "  \r\n");
  EXPECT_EQ(ComputeWorkRoot(), install.wpath() + sep + L"vroot" + sep);
  // The trace follows the work root.
  std::filesystem::create_directories(install.path() / "vroot");
  Trace(L"x");
  EXPECT_FALSE(testing::ReadFileBytes(install.path() / "vroot" / "Log" / "UI.txt").empty());

  install.WriteUserNameIni("[Registry]\r\nVirtualPath=" +
                           platform::WideToAnsi(install.wpath() + sep + L"v2" + sep) + "\r\n");
  EXPECT_EQ(ComputeWorkRoot(), install.wpath() + sep + L"v2" + sep);
}

}  // namespace
}  // namespace tavrine::foundation
