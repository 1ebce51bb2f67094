#include "dialogs/session_texts.h"

#include <algorithm>
#include <cstdio>

#include "dialogs/dialog_texts.h"
#include "foundation/configuration.h"
#include "foundation/text_util.h"

namespace tavrine::dialogs {

namespace {

// German and Spanish write 1,1 GB.
wchar_t DecimalMark() {
  const std::wstring& language = foundation::LoadedConfiguration().language;
  return foundation::EqualsIgnoreCase(language, L"German") ||
                 foundation::EqualsIgnoreCase(language, L"Spanish")
             ? L','
             : L'.';
}

std::wstring Replace(std::wstring text, std::wstring_view placeholder, const std::wstring& value) {
  if (std::size_t at = text.find(placeholder); at != std::wstring::npos) {
    text.replace(at, placeholder.size(), value);
  }
  return text;
}

std::wstring TwoDigits(int value) {
  wchar_t text[8];
  std::swprintf(text, 8, L"%02d", value);
  return text;
}

}  // namespace

std::wstring FormatBytes(double bytes, wchar_t decimal_mark) {
  static constexpr const wchar_t* kUnits[] = {L"bytes", L"KB", L"MB", L"GB", L"TB"};
  int unit = 0;
  while (bytes >= 1024 && unit < 4) {
    bytes /= 1024;
    ++unit;
  }
  wchar_t text[64];
  std::swprintf(text, 64, unit == 0 ? L"%.0f %ls" : L"%.1f %ls", bytes, kUnits[unit]);
  std::wstring result = text;
  std::replace(result.begin(), result.end(), L'.', decimal_mark);
  return result;
}

std::wstring QuotaUsageText(const std::optional<operations::QuotaReading>& quota) {
  if (!quota || quota->total_bytes <= 0) return L"-";
  const wchar_t mark = DecimalMark();
  std::wstring text = LocalText(caption::kSessionQuotaUsed, L"%1 of %2 used");
  text = Replace(std::move(text), L"%1", FormatBytes(quota->used_bytes, mark));
  return Replace(std::move(text), L"%2", FormatBytes(quota->total_bytes, mark));
}

std::wstring QuotaReadAtText(const std::optional<operations::QuotaReading>& quota,
                             const platform::LocalTime& now) {
  if (!quota) return L"";
  const platform::LocalTime& at = quota->read_at;
  std::wstring when = TwoDigits(at.hour) + L":" + TwoDigits(at.minute);
  if (at.year != now.year || at.month != now.month || at.day != now.day) {
    when = std::to_wstring(at.year) + L"-" + TwoDigits(at.month) + L"-" + TwoDigits(at.day) + L" " + when;
  }
  return Replace(LocalText(caption::kSessionQuotaRead, L"Read at %1"), L"%1", when);
}

int QuotaPermille(const std::optional<operations::QuotaReading>& quota) {
  if (!quota || quota->total_bytes <= 0 || quota->used_bytes <= 0) return 0;
  return static_cast<int>(std::min(1000.0, quota->used_bytes / quota->total_bytes * 1000 + 0.5));
}

}  // namespace tavrine::dialogs
