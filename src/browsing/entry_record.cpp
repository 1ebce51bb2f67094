#include "browsing/entry_record.h"

#include <algorithm>

#include "browsing/case_fold.h"
#include "browsing/file_time.h"

namespace tavrine::browsing {

namespace {

constexpr std::uint64_t kSecondsFrom1601To1970 = 11644473600ULL;
constexpr std::uint64_t kTicksPerSecond = 10000000ULL;
constexpr std::uint64_t kSizeLimit = std::uint64_t{1} << 39;

// Digits as the engine writes a number: no sign, blank or leading zero.
bool PlainNumber(std::string_view text, std::size_t max_digits, std::uint64_t& value) {
  if (text.empty() || text.size() > max_digits || (text[0] == '0' && text.size() > 1)) return false;
  value = 0;
  for (char c : text) {
    const auto digit = static_cast<std::uint32_t>(static_cast<unsigned char>(c)) - '0';
    if (digit > 9) return false;
    value = value * 10 + digit;
  }
  return true;
}

bool IsDigitAt(std::string_view text, std::size_t at) { return text[at] >= '0' && text[at] <= '9'; }

// "MM-DD-YYYY HH:MM:SS" of a real instant from 1970 to 2106: the text follows
// from the seconds, so only they are kept.
bool PackDate(std::string_view text, std::uint32_t& seconds) {
  if (text.size() != 19) return false;
  for (std::size_t at : {0, 1, 3, 4, 6, 7, 8, 9, 11, 12, 14, 15, 17, 18})
    if (!IsDigitAt(text, at)) return false;
  FileTime time;
  if (ConvertListingDate(text, time) != DateFailure::kNone) return false;
  const std::uint64_t ticks = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
  const std::uint64_t since_1601 = ticks / kTicksPerSecond;
  if (since_1601 < kSecondsFrom1601To1970 || since_1601 - kSecondsFrom1601To1970 > UINT32_MAX) return false;
  seconds = static_cast<std::uint32_t>(since_1601 - kSecondsFrom1601To1970);
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

bool PackFields(std::string_view fields, ModeTable& modes, EntryRecord& record) {
  std::string_view parts[5];
  std::size_t count = 0;
  if (fields.empty() || fields[0] != '/') return false;
  for (std::size_t begin = 1;;) {
    if (count == 5) return false;
    const std::size_t end = fields.find('/', begin);
    parts[count++] = fields.substr(begin, end == fields.npos ? fields.npos : end - begin);
    if (end == fields.npos) break;
    begin = end + 1;
  }
  if (count < 4) return false;
  std::uint64_t version = 0, size = 0;
  std::uint32_t seconds = 0;
  if (!PlainNumber(parts[0], 5, version) || version > 0xFFFF) return false;
  if (!PlainNumber(parts[1], 12, size) || size >= kSizeLimit) return false;
  if (!PackDate(parts[2], seconds)) return false;
  const bool zero_field = count == 5;
  if (zero_field && parts[3] != "0") return false;
  const std::uint8_t mode = modes.CodeOf(parts[count - 1]);
  if (mode == ModeTable::kEscaped) return false;
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
