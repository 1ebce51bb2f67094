#include "tool_text.h"

#include <cstdio>

namespace tavrine::reftools {

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

std::u32string DecodeUtf8(std::string_view text, bool* well_formed) {
  std::u32string out;
  for (std::size_t i = 0; i < text.size();) {
    auto b = static_cast<unsigned char>(text[i]);
    int extra = b < 0x80 ? 0 : (b & 0xE0) == 0xC0 ? 1 : (b & 0xF0) == 0xE0 ? 2 : (b & 0xF8) == 0xF0 ? 3 : -1;
    char32_t c = extra <= 0 ? b : (b & (0x3F >> extra));
    bool ok = extra >= 0;
    for (int k = 1; ok && k <= extra; ++k) {
      std::size_t at = i + static_cast<std::size_t>(k);
      ok = at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
      if (ok) c = (c << 6) | (static_cast<unsigned char>(text[at]) & 0x3F);
    }
    if (!ok) {
      if (well_formed) *well_formed = false;
      out += U'\uFFFD';
      ++i;
      continue;
    }
    out += c;
    i += static_cast<std::size_t>(extra) + 1;
  }
  return out;
}

void AppendUtf16Le(std::string& out, char32_t c) {
  auto unit = [&out](char32_t u) {
    out += static_cast<char>(u & 0xFF);
    out += static_cast<char>((u >> 8) & 0xFF);
  };
  if (c >= 0x10000) {
    c -= 0x10000;
    unit(0xD800 | (c >> 10));
    unit(0xDC00 | (c & 0x3FF));
  } else {
    unit(c);
  }
}

std::u32string DecodeUtf16Le(std::string_view bytes) {
  auto unit = [&](std::size_t at) {
    return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                 (static_cast<unsigned char>(bytes[at + 1]) << 8));
  };
  std::u32string out;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t c = unit(i);
    if (c >= 0xD800 && c < 0xDC00 && i + 3 < bytes.size() && unit(i + 2) >= 0xDC00 &&
        unit(i + 2) < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (unit(i + 2) - 0xDC00);
      i += 2;
    }
    out += c;
  }
  return out;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = text.size();
    lines.emplace_back(text.substr(start, end - start));
    if (end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n') ++end;
    start = end + 1;
  }
  return lines;
}

std::string Trim(std::string_view text) {
  std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  std::size_t end = text.find_last_not_of(" \t");
  return std::string(text.substr(begin, end - begin + 1));
}

std::string AsciiLower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

std::string HexBytes(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  hex.reserve(bytes.size() * 2);
  for (char c : bytes) {
    auto b = static_cast<unsigned char>(c);
    hex += kDigits[b >> 4];
    hex += kDigits[b & 0xF];
  }
  return hex;
}

std::string FormatDate(std::chrono::sys_seconds time) {
  using namespace std::chrono;
  auto day = floor<days>(time);
  year_month_day date{day};
  hh_mm_ss<seconds> clock{time - day};
  char text[32];
  std::snprintf(text, sizeof text, "%02u-%02u-%04d %02d:%02d:%02d",
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(date.year()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()));
  return text;
}

}  // namespace tavrine::reftools
