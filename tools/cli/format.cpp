#include "format.h"

#include <chrono>
#include <cstdio>

#include "platform/path.h"

namespace tavrine::cli {

std::string HumanSize(double bytes) {
  static constexpr const char* kUnits[] = {"B", "KB", "MB", "GB", "TB"};
  if (bytes < 0) return "-";
  std::size_t unit = 0;
  while (bytes >= 1024 && unit + 1 < std::size(kUnits)) {
    bytes /= 1024;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
  return text;
}

std::string FileTimeText(const browsing::FileTime& time) {
  if (time.dwLowDateTime == 0xFFFFFFFFu && time.dwHighDateTime == 0xFFFFFFFFu) return "-";
  std::uint64_t ticks = (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
  // 100-ns ticks since 1601-01-01; 11644473600 s separate 1601 from 1970.
  std::int64_t seconds = static_cast<std::int64_t>(ticks / 10000000) - 11644473600LL;
  using namespace std::chrono;
  sys_seconds instant{std::chrono::seconds(seconds)};
  sys_days day = floor<days>(instant);
  year_month_day date{day};
  hh_mm_ss clock{instant - day};
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02lld:%02lld:%02lld", int(date.year()),
                unsigned(date.month()), unsigned(date.day()),
                static_cast<long long>(clock.hours().count()),
                static_cast<long long>(clock.minutes().count()),
                static_cast<long long>(clock.seconds().count()));
  return text;
}

std::string Utf8(const std::wstring& text) { return platform::WideToUtf8(text); }
std::wstring Wide(const std::string& text) { return platform::Utf8ToWide(text); }

namespace {
std::size_t CodePoints(const std::string& utf8) {
  std::size_t count = 0;
  for (unsigned char c : utf8) count += (c & 0xC0) != 0x80;
  return count;
}
}  // namespace

std::string PadRight(const std::string& utf8, std::size_t width) {
  std::size_t length = CodePoints(utf8);
  return length >= width ? utf8 : utf8 + std::string(width - length, ' ');
}

std::string PadLeft(const std::string& utf8, std::size_t width) {
  std::size_t length = CodePoints(utf8);
  return length >= width ? utf8 : std::string(width - length, ' ') + utf8;
}

}  // namespace tavrine::cli
