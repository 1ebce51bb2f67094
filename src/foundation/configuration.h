#pragma once
#include <cstdint>
#include <string>

namespace tavrine::foundation {

// What Configuration.ini gives, and what is derived from it. A session loads it
// at an operation's start and holds it by value.
struct Configuration {
  // [ProductInfo]
  std::int16_t product_number = 0;
  std::wstring product_name;
  std::wstring product_name_copy;
  std::wstring installation_name;
  std::wstring tree_view_name;
  std::wstring language;
  std::wstring caption;
  std::wstring exe_group;
  // [ConnectionInfo]
  std::wstring domain_name;
  std::wstring ip_address1;
  std::wstring ip_address2;
  std::wstring port;
  std::wstring current_host;
  std::wstring current_address;
  // [WebLink]
  std::wstring firewall_link;
  std::wstring account_firewall_link;
  std::wstring upgrade_link;
  std::wstring account_upgrade_link;
  std::wstring login_link;
  std::wstring forgot_pwd_link;
  std::wstring features_link;
  std::wstring signup_link;
  std::wstring update_link;
  std::wstring website_link;
  std::wstring web_demo_link;
  // Derived when the configuration is valid.
  std::wstring client_program_name;
  std::wstring client_program_name_copy;
  std::wstring message_title;
  std::wstring failure_title;
  std::wstring logon_failure_title;
  // Upper bound of one engine run (ConnectionInfo/EngineTimeoutSeconds).
  std::uint32_t engine_timeout_seconds = 1800;
};

// The configuration last loaded on this thread. The layers under every session
// (message texts, language texts, the profile store) and the calls that open
// none read it; a later load on the same thread starts from it, so values the
// new file lacks stay as an earlier load left them.
Configuration& LoadedConfiguration();

inline constexpr const wchar_t* kFixedSignupLink =
    L"https://www.tavrine.com/tavrine/jsp/tve_freesignup.jsp";
inline constexpr const wchar_t* kDefaultServerHost = L"www.tavrine.com";
inline constexpr std::uint32_t kDefaultEngineTimeoutSeconds = 1800;

// Reads Configuration.ini beside the library over `into`: a missing file
// leaves it as it is, and the derived names change only when the file is
// complete. True when the configuration is complete.
bool LoadConfiguration(Configuration& into);

// LoadConfiguration(LoadedConfiguration()).
bool LoadConfigurations();

// One value of Configuration.ini, trimmed; "" when the file, section or key is missing.
std::wstring ReadConfigValue(const std::wstring& section, const std::wstring& key);

// <module folder><sep>Configuration.ini and <module folder><sep>UserName.ini.
std::wstring ConfigurationFilePath();
std::wstring UserNameIniPath();

// VirtualPath of UserName.ini with a trailing separator, or the module folder
// with one when it is empty.
std::wstring ComputeWorkRoot();

}  // namespace tavrine::foundation
