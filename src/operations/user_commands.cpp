#include "operations/user_commands.h"

#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/message_table.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "profile/profile_store.h"

namespace tavrine::operations {

bool IsFreePlanQuota(double max_size) {
  return max_size == 2147483648.0 || max_size == 12884901888.0 || max_size == 161061273600.0;
}

QuotaAnswer ReadQuotaForShell(double max_size, double used_space) {
  foundation::Trace(L"Inside W_GetQuota_Command");
  QuotaAnswer answer{-1, max_size, used_space};
  engine::Session session = engine::Session::Open();
  const QuotaResult quota = ReadQuota(session);
  if (quota.max_size) answer.max_size = *quota.max_size;
  if (quota.used_space) answer.used_space = *quota.used_space;
  answer.result = quota.result;
  // Only a completed call with a quota says anything about the plan.
  if (answer.result == 0 && answer.max_size != 0) {
    std::wstring wanted = IsFreePlanQuota(answer.max_size) ? L"1" : L"0";
    if (profile::GetUserProfile(L"freeuser") != wanted) {
      profile::UpdateUserProfile(L"freeuser", wanted);
    }
  }
  return answer;
}

std::optional<std::wstring> MessageString(std::int32_t code) {
  engine::Session::OpenConfiguration();
  return foundation::MessageText(code);
}

std::optional<std::wstring> MessageTitle(std::int32_t code) {
  const engine::Session session = engine::Session::OpenConfiguration();
  const auto& settings = session.configuration();
  switch (foundation::MessageTitleOf(code)) {
    case foundation::MessageTitle::kFirstCaption:
      return settings.message_title;
    case foundation::MessageTitle::kSecondCaption:
      return settings.failure_title;
    case foundation::MessageTitle::kNone:
      break;
  }
  return std::nullopt;
}

}  // namespace tavrine::operations
