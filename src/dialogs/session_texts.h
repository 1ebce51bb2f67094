#pragma once
#include <optional>
#include <string>

#include "operations/last_quota.h"
#include "platform/clock.h"

namespace tavrine::dialogs {

// "1.1 GB"-style size with one decimal ("512 bytes" below a kilobyte).
std::wstring FormatBytes(double bytes, wchar_t decimal_mark = L'.');

// "1.1 GB of 2.0 GB used" in the configured language; "-" without a figure
// (no reading, or one without a total).
std::wstring QuotaUsageText(const std::optional<operations::QuotaReading>& quota);
// "Read at 17:42", with the date in front when `now` is another day; "" without a reading.
std::wstring QuotaReadAtText(const std::optional<operations::QuotaReading>& quota,
                             const platform::LocalTime& now);
// The used share of the total in thousandths, 0 to 1000.
int QuotaPermille(const std::optional<operations::QuotaReading>& quota);

}  // namespace tavrine::dialogs
