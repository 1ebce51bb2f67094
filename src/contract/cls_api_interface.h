#pragma once
// clsAPI_Interface as callers know it: each method opens the session, calls
// the operation in operations/remote_operations.h and is the one place its
// failures are trapped.
#include <cstdint>
#include <optional>
#include <string>

#include "engine/session.h"

namespace tavrine::contract {

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
  std::int32_t API_ENTRY_RESTORE(const std::wstring& destPath, const std::wstring& parentPath,
                                 const std::wstring& tempPath);
  std::int32_t API_GETVERSIONS(const std::wstring& filepath, std::wstring& pstrtemp);
  std::int32_t API_DELETE_REMOTE_FILE(const std::wstring& sInputDelete);
  std::int32_t API_FirewallSettings();

 private:
  // Opens the session of a call; it stays with the object afterwards, as the
  // firewall probe keeps a "localhost" address an earlier call left.
  engine::Session& Begin();

  std::optional<engine::Session> session_;
};

}  // namespace tavrine::contract
