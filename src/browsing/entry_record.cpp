#include "browsing/entry_record.h"

#include <algorithm>

#include "browsing/case_fold.h"

namespace tavrine::browsing {

namespace {

constexpr std::uint64_t kSecondsFrom1601To1970 = 11644473600ULL;
constexpr std::uint64_t kTicksPerSecond = 10000000ULL;
constexpr std::uint64_t kSizeLimit = std::uint64_t{1} << 39;

// Two digits at `at`; `bad` gains a bit when either is not a digit.
inline unsigned TwoDigits(const char16_t* text, std::size_t at, std::uint32_t& bad) {
  const std::uint32_t high = static_cast<std::uint32_t>(text[at]) - u'0';
  const std::uint32_t low = static_cast<std::uint32_t>(text[at + 1]) - u'0';
  bad |= (high > 9) | (low > 9);
  return high * 10 + low;
}

// Days before each month's first in a common year.
constexpr unsigned kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

// Leap days in the years before `year` (from year 1 on).
constexpr std::uint32_t LeapDaysBefore(std::uint32_t year) {
  const std::uint32_t y = year - 1;
  return y / 4 - y / 100 + y / 400;
}

// "MM-DD-YYYY HH:MM:SS" of a real instant from 1970 to 2106: the text follows
// from the seconds, so only they are kept. Straight-line: most lines come here.
bool PackDate(std::u16string_view date, std::uint32_t& seconds) {
  const char16_t* text = date.data();
  if (date.size() != 19 || text[2] != u'-' || text[5] != u'-' || text[10] != u' ' || text[13] != u':' ||
      text[16] != u':')
    return false;
  std::uint32_t bad = 0;
  const unsigned month = TwoDigits(text, 0, bad), day = TwoDigits(text, 3, bad);
  const unsigned year = TwoDigits(text, 6, bad) * 100 + TwoDigits(text, 8, bad);
  const unsigned hour = TwoDigits(text, 11, bad), minute = TwoDigits(text, 14, bad), second = TwoDigits(text, 17, bad);
  if (bad || year < 1970 || year > 2106 || month < 1 || month > 12 || day < 1 || hour > 23 || minute > 59 ||
      second > 59)
    return false;
  static constexpr unsigned kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  const unsigned leap_day = leap && month > 2 ? 1 : 0;
  if (day > kMonthDays[month - 1] + (month == 2 && leap ? 1 : 0)) return false;
  const std::uint64_t days = std::uint64_t{365} * (year - 1970) + (LeapDaysBefore(year) - LeapDaysBefore(1970)) +
                             kDaysBeforeMonth[month - 1] + leap_day + day - 1;
  const std::uint64_t total = days * 86400 + hour * 3600 + minute * 60 + second;
  if (total > UINT32_MAX) return false;
  seconds = static_cast<std::uint32_t>(total);
  return true;
}

void AppendTwo(std::string& out, unsigned value) {
  out.push_back(static_cast<char>('0' + value / 10));
  out.push_back(static_cast<char>('0' + value % 10));
}

void AppendDate(std::uint32_t seconds, std::string& out) {
  // Civil date from days since 1970 (proleptic Gregorian).
  const std::int64_t z = seconds / 86400 + 719468;
  const std::int64_t era = z / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const unsigned day = static_cast<unsigned>(doy - (153 * mp + 2) / 5 + 1);
  const unsigned month = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
  const unsigned year = static_cast<unsigned>(yoe + era * 400 + (month <= 2));
  const unsigned in_day = seconds % 86400;
  AppendTwo(out, month);
  out.push_back('-');
  AppendTwo(out, day);
  out.push_back('-');
  AppendTwo(out, year / 100);
  AppendTwo(out, year % 100);
  out.push_back(' ');
  AppendTwo(out, in_day / 3600);
  out.push_back(':');
  AppendTwo(out, in_day / 60 % 60);
  out.push_back(':');
  AppendTwo(out, in_day % 60);
}

}  // namespace

ModeTable::ModeTable() : texts_{"U", "A"}, wides_{L"U", L"A"} {}

std::uint8_t ModeTable::CodeOf(std::string_view mode) {
  if (mode.size() == 1 && mode[0] == 'U') return 0;
  if (mode.size() == 1 && mode[0] == 'A') return 1;
  for (std::size_t code = 2; code < texts_.size(); ++code)
    if (texts_[code] == mode) return static_cast<std::uint8_t>(code);
  if (texts_.size() >= kEscaped) return kEscaped;
  texts_.emplace_back(mode);
  backslash_[texts_.size() - 1] = mode.find('\\') != std::string_view::npos;
  wides_.emplace_back();
  AssignWide(wides_.back(), mode);
  return static_cast<std::uint8_t>(texts_.size() - 1);
}

std::size_t ModeTable::MemoryBytes() const {
  std::size_t bytes = 0;
  for (std::size_t k = 0; k < texts_.size(); ++k)
    bytes += sizeof(std::string) + sizeof(std::wstring) + texts_[k].capacity() + wides_[k].capacity() * sizeof(wchar_t);
  return bytes;
}

// In one pass: "/" version "/" size "/" date ["/0"] "/" mode.
bool PackFields(std::u16string_view fields, ModeTable& modes, EntryRecord& record) {
  const std::size_t n = fields.size();
  std::size_t i = 1;
  // Digits as the engine writes a number (no sign, blank or leading zero) up
  // to the next "/", which must follow.
  const auto number = [&](std::size_t max_digits, std::uint64_t& value) {
    const std::size_t begin = i;
    value = 0;
    for (; i < n; ++i) {
      const auto digit = static_cast<std::uint32_t>(fields[i]) - u'0';
      if (digit > 9) break;
      value = value * 10 + digit;
    }
    const std::size_t digits = i - begin;
    return i < n && fields[i] == u'/' && digits >= 1 && digits <= max_digits && (fields[begin] != u'0' || digits == 1);
  };
  std::uint64_t version = 0, size = 0;
  std::uint32_t seconds = 0;
  if (n == 0 || fields[0] != u'/') return false;
  if (!number(5, version) || version > 0xFFFF) return false;
  ++i;
  if (!number(12, size) || size >= kSizeLimit) return false;
  ++i;
  if (i + 20 > n || fields[i + 19] != u'/' || !PackDate(fields.substr(i, 19), seconds)) return false;
  i += 20;
  const bool zero_field = i + 1 < n && fields[i] == u'0' && fields[i + 1] == u'/';
  if (zero_field) i += 2;
  const std::u16string_view mode_text = fields.substr(i);
  std::uint8_t mode;
  if (mode_text.size() == 1 && mode_text[0] == u'U') {
    mode = 0;
  } else {
    if (mode_text.find(u'/') != std::u16string_view::npos) return false;
    std::string utf8;
    AppendUtf8(utf8, mode_text);
    mode = modes.CodeOf(utf8);
    if (mode == ModeTable::kEscaped) return false;
  }
  record.seconds_or_name_size = seconds;
  record.packed = mode | (std::uint64_t{zero_field} << 8) | (version << 9) | (size << 25);
  return true;
}

void AppendFields(const EntryRecord& record, const ModeTable& modes, std::string& out) {
  out.push_back('/');
  out += std::to_string(record.version());
  out.push_back('/');
  out += std::to_string(record.size());
  out.push_back('/');
  AppendDate(record.seconds_or_name_size, out);
  if (record.zero_field()) out += "/0";
  out.push_back('/');
  out += modes.Text(record.mode());
}

void FillPackedFields(const EntryRecord& record, const ModeTable& modes, FindData& data) {
  data.nVersion = static_cast<std::int16_t>(std::min<std::uint32_t>(record.version(), 32767));
  data.nFileSize = static_cast<std::int64_t>(record.size());
  const std::uint64_t ticks = (record.seconds_or_name_size + kSecondsFrom1601To1970) * kTicksPerSecond;
  data.ftLastWriteTime = {static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)};
  data.ftCreationTime = data.ftLastWriteTime;
  // "U" and "A" are an ordinary entry, given as no mode.
  if (record.mode() < 2) {
    data.strUnimode.clear();
  } else {
    data.strUnimode.assign(modes.Wide(record.mode()));
  }
}

}  // namespace tavrine::browsing
