#pragma once
#include <cstdint>
#include <string>

namespace tavrine::operations {

// The shell side's entry for user-facing commands and result-code texts.
class UICommands {
 public:
  // API_GetQuota's result; keeps the profile's "freeuser" in step with the quota.
  std::int16_t W_GetQuota_Command(double& sMaxSize, double& sUsedSpace);
  std::int32_t W_GetCurrentUserName(std::wstring& sUsername);
  std::int32_t W_AutoReconnect();
  std::int32_t W_GetMessageString(std::int32_t MessageCode, std::wstring& MessageRet);
  std::int32_t W_GetMessageInfo(std::int32_t MessageCode, std::wstring& msgTitle,
                                std::int16_t& msgType);
  // Remote delete and the firewall probe (ui_commands_delete.cpp).
  std::int32_t W_DeleteRemoteFiles(const std::wstring& sInputDelete);
  std::int32_t W_Dummycall();
  std::int16_t UI_Login_Command(std::int32_t& hHandle);
  std::int32_t UI_Session_Command(std::int32_t& hHandle);
};

// The only quotas of the free plans, compared exactly.
bool IsFreePlanQuota(double max_size);

}  // namespace tavrine::operations
