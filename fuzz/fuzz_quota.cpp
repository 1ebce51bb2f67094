// Quota.txt (used bytes, then the plan's bytes) and the number readers every
// result goes through.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "fuzz_support.h"
#include "operations/user_commands.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavrine::foundation;
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("Quota.txt", tavrine::fuzz::AsView(data, size));
  auto lines = ReadAnsiLines(tavrine::fuzz::WidePath("Quota.txt"));
  if (!lines) std::abort();
  for (const std::wstring& line : *lines) {
    double used = LeadingNumber(line);
    (void)tavrine::operations::IsFreePlanQuota(used);
    (void)RoundToInt32(used);
    if (auto number = ParseNumber(line)) {
      if (std::isnan(*number)) std::abort();
      (void)RoundToInt32(*number);
    }
    if (auto small = ParseInt16(line); small && !ParseInt32(line)) std::abort();
  }
  return 0;
}
