#pragma once
#include <optional>

#include "platform/clock.h"

namespace tavrine::operations {

// A quota as API_GetQuota read it from Quota.txt, and when.
struct QuotaReading {
  double used_bytes = 0;
  double total_bytes = 0;  // 0 when the file had no second line
  platform::LocalTime read_at;
};

// The last reading on this thread (nothing before the first); kept per thread
// like the other process-wide state, so each apartment sees its own calls.
std::optional<QuotaReading>& LastQuota();

}  // namespace tavrine::operations
