#include "foundation/configuration.h"

#include "foundation/file_system.h"
#include "foundation/text_util.h"
#include "platform/ini_file.h"
#include "platform/module_folder.h"
#include "platform/path.h"

namespace tavrine::foundation {

namespace {

constexpr const wchar_t* kProductInfo = L"ProductInfo";
constexpr const wchar_t* kConnectionInfo = L"ConnectionInfo";
constexpr const wchar_t* kWebLink = L"WebLink";

// Drops characters that never belong in a configured value (NULs a broken
// file may carry); plain values come back unchanged.
std::wstring CleanValue(std::wstring value) {
  std::erase(value, L'\0');
  return value;
}

std::uint32_t ReadEngineTimeout() {
  auto seconds = ParseInt32(ReadConfigValue(kConnectionInfo, L"EngineTimeoutSeconds"));
  if (!seconds || *seconds <= 0) return kDefaultEngineTimeoutSeconds;
  return static_cast<std::uint32_t>(*seconds);
}

}  // namespace

std::wstring ConfigurationFilePath() {
  return JoinPath(platform::ModuleFolder(), L"Configuration.ini");
}

std::wstring UserNameIniPath() { return JoinPath(platform::ModuleFolder(), L"UserName.ini"); }

std::wstring ReadConfigValue(const std::wstring& section, const std::wstring& key) {
  // A value that cannot be read is a missing one: the configuration is read
  // on every call, and a missing key has its default.
  try {
    return CleanValue(Trim(platform::ReadIniString(section, key, ConfigurationFilePath())));
  } catch (...) {
    return L"";
  }
}

std::wstring ComputeWorkRoot() {
  std::wstring root;
  // An unreadable UserName.ini leaves the work root in the install folder,
  // as an empty VirtualPath does.
  try {
    root = Trim(platform::ReadIniString(L"Registry", L"VirtualPath", UserNameIniPath()));
    root = CleanValue(root);
  } catch (...) {
    root.clear();
  }
  if (root.empty()) return platform::ModuleFolder() + platform::kPathSeparator;
  if (root.back() != platform::kPathSeparator) root += platform::kPathSeparator;
  return root;
}

bool LoadConfigurations() { return LoadConfiguration(LoadedConfiguration()); }

bool LoadConfiguration(Configuration& s) {
  if (!FileExists(ConfigurationFilePath())) return false;

  if (auto number = ParseInt16(ReadConfigValue(kProductInfo, L"ProductNumber"))) {
    s.product_number = *number;
  }
  s.product_name = ReadConfigValue(kProductInfo, L"ProductName");
  s.installation_name = ReadConfigValue(kProductInfo, L"ProductInstallationName");
  s.tree_view_name = ReadConfigValue(kProductInfo, L"ProductTreeViewName");
  s.language = ReadConfigValue(kProductInfo, L"Language");
  s.caption = s.product_name != L"Tavrin" ? ReadConfigValue(kProductInfo, L"ProductCaption")
                                          : s.product_name;
  s.exe_group = ReadConfigValue(kProductInfo, L"ExeGroup");
  s.product_name_copy = s.product_name;

  s.domain_name = ReadConfigValue(kConnectionInfo, L"DomainName");
  s.ip_address1 = ReadConfigValue(kConnectionInfo, L"IPAddress1");
  s.ip_address2 = ReadConfigValue(kConnectionInfo, L"IPAddress2");
  s.port = ReadConfigValue(kConnectionInfo, L"Port");
  s.engine_timeout_seconds = ReadEngineTimeout();

  s.firewall_link = ReadConfigValue(kWebLink, L"FirewallLink");
  s.account_firewall_link = ReadConfigValue(kWebLink, L"AccountFirewallLink");
  s.upgrade_link = ReadConfigValue(kWebLink, L"UpgradeLink");
  s.account_upgrade_link = ReadConfigValue(kWebLink, L"AccountUpgradeLink");
  s.login_link = ReadConfigValue(kWebLink, L"LoginLink");
  s.forgot_pwd_link = ReadConfigValue(kWebLink, L"ForgotPwdLink");
  s.features_link = ReadConfigValue(kWebLink, L"FeaturesLink");
  s.signup_link = ReadConfigValue(kWebLink, L"SignupLink");
  s.update_link = ReadConfigValue(kWebLink, L"UpdateLink");
  s.website_link = ReadConfigValue(kWebLink, L"WebsiteLink");
  s.web_demo_link = ReadConfigValue(kWebLink, L"WebDemoLink");

  s.current_host = s.domain_name;
  s.current_address = s.ip_address1;
  // The configured sign-up link is deliberately never used.
  s.signup_link = kFixedSignupLink;

  bool valid = !s.product_name.empty() && s.product_number != 0 && !s.installation_name.empty() &&
               !s.tree_view_name.empty() && !s.caption.empty();
  if (!valid) return false;

  s.client_program_name = s.exe_group + L"ClsClient.exe";
  s.client_program_name_copy = s.client_program_name;
  s.message_title = s.caption;
  s.failure_title = s.caption + L" failure";
  s.logon_failure_title = s.caption + L" logon failure";
  return true;
}

}  // namespace tavrine::foundation
