#pragma once
#include <cstdint>
#include <string>

#include "engine/cls_client.h"

namespace tavrine::operations {

// The engine round trips of a session: login, listing, quota, restore,
// versions, delete.
class clsAPI_Interface {
 public:
  std::int16_t API_GetQuota(double& sMaxSize, double& sUsedSpace);
  std::int32_t API_AutoReconnect();
  std::int32_t API_UPDATE_RAND_NUM();
  std::int32_t API_REMOTE(const std::wstring& strtempfd);
  // Starts a login run in the caller's folder; returns the engine's process
  // handle (now the caller's) or -1. Sets lResult to 1 when it completes.
  std::int32_t API_ENTRY(const std::wstring& strtempfd, std::int16_t& lResult);
  std::int32_t API_AutoMultipleServerSupport();

  // Restore and versions (cls_api_interface_restore.cpp).
  std::int32_t API_ENTRY_RESTORE(const std::wstring& destPath, const std::wstring& parentPath,
                                 const std::wstring& tempPath);
  std::int32_t API_GETVERSIONS(const std::wstring& filepath, std::wstring& pstrtemp);

  // Remote delete and the firewall probe (cls_api_interface_delete.cpp).
  std::int32_t API_DELETE_REMOTE_FILE(const std::wstring& sInputDelete);
  std::int32_t API_FirewallSettings();

 private:
  // LoadConfigurations, GetCurrentUser and LoadProxySettings, in that order.
  engine::ProxySettings LoadSession();
  // `method` names the caller in trace lines.
  std::int32_t SilentLogin(const wchar_t* method);

  engine::clsClient client_;
  std::wstring base_path_;
  std::wstring current_user_;
};

// Codes that mean "no usable connection yet" to the silent login.
bool IsTransientLoginCode(std::int32_t code);

}  // namespace tavrine::operations
