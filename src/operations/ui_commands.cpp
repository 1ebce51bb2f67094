#include "operations/ui_commands.h"

#include "foundation/message_table.h"
#include "foundation/settings.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "profile/profile_store.h"

namespace tavrine::operations {

bool IsFreePlanQuota(double max_size) {
  return max_size == 2147483648.0 || max_size == 12884901888.0 || max_size == 161061273600.0;
}

std::int16_t UICommands::W_GetQuota_Command(double& sMaxSize, double& sUsedSpace) {
  std::int16_t result = -1;
  try {
    foundation::Trace(L"Inside W_GetQuota_Command");
    engine::Session session = engine::Session::Open();
    QuotaResult quota = ReadQuota(session);
    if (quota.max_size) sMaxSize = *quota.max_size;
    if (quota.used_space) sUsedSpace = *quota.used_space;
    result = quota.result;
    // Only a completed call with a quota says anything about the plan.
    if (result == 0 && sMaxSize != 0) {
      std::wstring wanted = IsFreePlanQuota(sMaxSize) ? L"1" : L"0";
      if (profile::GetUserProfile(L"freeuser") != wanted) {
        profile::UpdateUserProfile(L"freeuser", wanted);
      }
    }
  } catch (...) {
    foundation::TraceException(L"W_GetQuota_Command", foundation::DescribeCurrentException());
  }
  return result;
}

std::int32_t UICommands::W_GetCurrentUserName(std::wstring& sUsername) {
  std::int32_t result = -1;
  try {
    sUsername = profile::DefaultUserName();
    result = sUsername.empty() ? -1 : 1;
  } catch (...) {
    foundation::TraceException(L"W_GetCurrentUserName", foundation::DescribeCurrentException());
  }
  return result;
}

std::int32_t UICommands::W_AutoReconnect() { return Reconnect(); }

std::int32_t UICommands::W_GetMessageString(std::int32_t MessageCode, std::wstring& MessageRet) {
  try {
    foundation::LoadConfigurations();
    if (auto text = foundation::MessageText(MessageCode)) {
      MessageRet = *text;
      return 1;
    }
  } catch (...) {
    foundation::TraceException(L"W_GetMessageString", foundation::DescribeCurrentException());
  }
  return 0;
}

std::int32_t UICommands::W_GetMessageInfo(std::int32_t MessageCode, std::wstring& msgTitle,
                                          std::int16_t& msgType) {
  try {
    msgTitle.clear();
    msgType = -1;
    foundation::LoadConfigurations();
    const auto& settings = foundation::CurrentSettings();
    switch (foundation::MessageTitleOf(MessageCode)) {
      case foundation::MessageTitle::kFirstCaption:
        msgTitle = settings.message_title;
        break;
      case foundation::MessageTitle::kSecondCaption:
        msgTitle = settings.failure_title;
        break;
      case foundation::MessageTitle::kNone:
        return 0;
    }
    msgType = 1;
    return 1;
  } catch (...) {
    foundation::TraceException(L"W_GetMessageInfo", foundation::DescribeCurrentException());
  }
  return 0;
}

}  // namespace tavrine::operations
