#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace tavrine::operations {

// The quota as the shell side asks for it: the engine call's result and the
// two figures, which stay as given where the call leaves them.
struct QuotaAnswer {
  std::int16_t result = -1;
  double max_size = 0;
  double used_space = 0;
};
// Reads the quota and keeps the profile's "freeuser" in step with it.
QuotaAnswer ReadQuotaForShell(double max_size, double used_space);

// The only quotas of the free plans, compared exactly.
bool IsFreePlanQuota(double max_size);

// The text of a result code in the configured language; nothing for an unknown code.
std::optional<std::wstring> MessageString(std::int32_t code);
// The title a result code's box carries; nothing for a code without one.
std::optional<std::wstring> MessageTitle(std::int32_t code);

}  // namespace tavrine::operations
