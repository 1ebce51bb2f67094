#include "browsing/file_time.h"

#include "foundation/trace_log.h"

namespace tavrine::browsing {

namespace {

template <class Char>
DateFailure ParsePart(std::basic_string_view<Char> part, std::int64_t& value) {
  while (!part.empty() && (part.front() == ' ' || part.front() == '\t')) part.remove_prefix(1);
  while (!part.empty() && (part.back() == ' ' || part.back() == '\t')) part.remove_suffix(1);
  if (part.empty()) return DateFailure::kTypeMismatch;
  value = 0;
  for (Char c : part) {
    if (c < '0' || c > '9') return DateFailure::kTypeMismatch;
    value = value * 10 + (c - '0');
    if (value > 32767) return DateFailure::kOverflow;
  }
  return DateFailure::kNone;
}

bool IsLeap(std::int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

// Days from 1601-01-01 (proleptic Gregorian).
std::int64_t DaysSince1601(std::int64_t y, std::int64_t m, std::int64_t d) {
  y -= m <= 2;
  const std::int64_t era = y / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  const std::int64_t from_1970 = era * 146097 + doe - 719468;
  return from_1970 + 134774;
}

template <class Char>
bool DigitsAt(std::basic_string_view<Char> text, std::size_t at, std::size_t size, std::int64_t& value) {
  value = 0;
  for (std::size_t i = at; i < at + size; ++i) {
    const auto digit = static_cast<std::uint32_t>(text[i]) - '0';
    if (digit > 9) return false;
    value = value * 10 + digit;
  }
  return true;
}

// The shape the engine writes, "MM-DD-YYYY HH:MM:SS", read without searching.
// Any other text goes the general way, which gives the same parts for this shape.
template <class Char>
bool SplitFixedShape(std::basic_string_view<Char> text, std::int64_t (&parts)[6]) {
  if (text.size() != 19 || text[2] != '-' || text[5] != '-' || text[10] != ' ' || text[13] != ':' ||
      text[16] != ':')
    return false;
  return DigitsAt(text, 0, 2, parts[0]) && DigitsAt(text, 3, 2, parts[1]) &&
         DigitsAt(text, 6, 4, parts[2]) && DigitsAt(text, 11, 2, parts[3]) &&
         DigitsAt(text, 14, 2, parts[4]) && DigitsAt(text, 17, 2, parts[5]);
}

template <class Char>
DateFailure SplitGeneral(std::basic_string_view<Char> text, std::int64_t (&parts)[6]) {
  constexpr Char kSeparators[] = {'-', '-', ' ', ':', ':'};
  for (int k = 0; k < 5; ++k) {
    std::size_t at = text.find(kSeparators[k]);
    if (at == text.npos) return DateFailure::kOverflow;
    if (DateFailure f = ParsePart(text.substr(0, at), parts[k]); f != DateFailure::kNone) return f;
    text.remove_prefix(at + 1);
  }
  return ParsePart(text, parts[5]);
}

template <class Char>
DateFailure Convert(std::basic_string_view<Char> text, FileTime& out) {
  std::int64_t parts[6] = {};
  if (!SplitFixedShape(text, parts)) {
    if (DateFailure f = SplitGeneral(text, parts); f != DateFailure::kNone) return f;
  }
  const std::int64_t month = parts[0], day = parts[1], year = parts[2];
  const std::int64_t hour = parts[3], minute = parts[4], second = parts[5];
  static constexpr int kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 1601 || year > 30827 || month < 1 || month > 12 || day < 1 || hour > 23 ||
      minute > 59 || second > 59)
    return DateFailure::kInvalidDate;
  const int days_in_month = kMonthDays[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0);
  if (day > days_in_month) return DateFailure::kInvalidDate;
  const std::uint64_t seconds = static_cast<std::uint64_t>(DaysSince1601(year, month, day)) * 86400 +
                                static_cast<std::uint64_t>(hour * 3600 + minute * 60 + second);
  const std::uint64_t ticks = seconds * 10000000ULL;
  out.dwLowDateTime = static_cast<std::uint32_t>(ticks & 0xFFFFFFFFULL);
  out.dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
  return DateFailure::kNone;
}

}  // namespace

DateFailure ConvertListingDate(std::wstring_view text, FileTime& out) { return Convert(text, out); }
DateFailure ConvertListingDate(std::string_view utf8, FileTime& out) { return Convert(utf8, out); }

const wchar_t* DescribeDateFailure(DateFailure failure) {
  switch (failure) {
    case DateFailure::kNone: return L"";
    case DateFailure::kOverflow: return L"Overflow";
    case DateFailure::kTypeMismatch: return L"Type mismatch";
    case DateFailure::kInvalidDate: return L"Invalid date";
  }
  return L"";
}

std::int32_t ISysTimeToFileTime(std::wstring_view dateText, FileTime& fileTime) {
  DateFailure failure = ConvertListingDate(dateText, fileTime);
  if (failure == DateFailure::kNone) return 1;
  foundation::TraceException(L"ISysTimeToFileTime", DescribeDateFailure(failure));
  return 0;
}

}  // namespace tavrine::browsing
