#include "operations/last_quota.h"

#include "platform/thread_slot.h"

namespace tavrine::operations {

std::optional<QuotaReading>& LastQuota() {
  static platform::PerThread<std::optional<QuotaReading>> last;
  return last.Get();
}

}  // namespace tavrine::operations
