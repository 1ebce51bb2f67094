#include "contract/ui_commands.h"

#include "contract/failure_boundary.h"
#include "engine/session.h"
#include "operations/remote_operations.h"
#include "operations/user_commands.h"
#include "profile/profile_store.h"

namespace tavrine::contract {

std::int16_t UICommands::W_GetQuota_Command(double& sMaxSize, double& sUsedSpace) try {
  const operations::QuotaAnswer answer = operations::ReadQuotaForShell(sMaxSize, sUsedSpace);
  sMaxSize = answer.max_size;
  sUsedSpace = answer.used_space;
  return answer.result;
} TAVRINE_CATCH_RETURN(L"W_GetQuota_Command", -1)

std::int32_t UICommands::W_GetCurrentUserName(std::wstring& sUsername) try {
  sUsername = profile::DefaultUserName();
  return sUsername.empty() ? -1 : 1;
} TAVRINE_CATCH_RETURN(L"W_GetCurrentUserName", -1)

std::int32_t UICommands::W_AutoReconnect() try {
  return operations::Reconnect();
} TAVRINE_CATCH_RETURN(L"W_AutoReconnect", -1)

std::int32_t UICommands::W_GetMessageString(std::int32_t MessageCode, std::wstring& MessageRet) try {
  std::optional<std::wstring> text = operations::MessageString(MessageCode);
  if (!text) return 0;
  MessageRet = std::move(*text);
  return 1;
} TAVRINE_CATCH_RETURN(L"W_GetMessageString", 0)

std::int32_t UICommands::W_GetMessageInfo(std::int32_t MessageCode, std::wstring& msgTitle,
                                          std::int16_t& msgType) try {
  msgTitle.clear();
  msgType = -1;
  std::optional<std::wstring> title = operations::MessageTitle(MessageCode);
  if (!title) return 0;
  msgTitle = std::move(*title);
  msgType = 1;
  return 1;
} TAVRINE_CATCH_RETURN(L"W_GetMessageInfo", 0)

std::int32_t UICommands::W_DeleteRemoteFiles(const std::wstring& sInputDelete) try {
  engine::Session session = engine::Session::Open();
  return operations::DeleteRemote(session, sInputDelete);
} TAVRINE_CATCH_RETURN(L"W_DeleteRemoteFiles", -1)

std::int32_t UICommands::W_Dummycall() try {
  return operations::ProbeFirewall(L"");
} TAVRINE_CATCH_RETURN(L"W_Dummycall", -1)

}  // namespace tavrine::contract
