#pragma once
#include <cstdint>
#include <string>

namespace tavrine::contract {

// UICommands as the shell side calls it: login and session windows, quota,
// result-code texts, remote delete.
class UICommands {
 public:
  // The quota call's result; keeps the profile's "freeuser" in step with the quota.
  std::int16_t W_GetQuota_Command(double& sMaxSize, double& sUsedSpace);
  std::int32_t W_GetCurrentUserName(std::wstring& sUsername);
  std::int32_t W_AutoReconnect();
  std::int32_t W_GetMessageString(std::int32_t MessageCode, std::wstring& MessageRet);
  std::int32_t W_GetMessageInfo(std::int32_t MessageCode, std::wstring& msgTitle,
                                std::int16_t& msgType);
  std::int32_t W_DeleteRemoteFiles(const std::wstring& sInputDelete);
  std::int32_t W_Dummycall();
  // The two window commands (ui_commands_windows.cpp), built beside the windows.
  std::int16_t UI_Login_Command(std::int32_t& hHandle);
  std::int32_t UI_Session_Command(std::int32_t& hHandle);
};

}  // namespace tavrine::contract
