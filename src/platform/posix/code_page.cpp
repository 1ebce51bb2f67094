#include "platform/code_page.h"

#include <array>

namespace tavrine::platform {

namespace {

// Windows-1252 for 0x80..0x9F; the five bytes Windows leaves undefined map to
// the C1 control of the same value, as MultiByteToWideChar does.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98
};

wchar_t CharOfByte(unsigned char byte) {
  if (byte >= 0x80 && byte <= 0x9F) return static_cast<wchar_t>(kHighControls[byte - 0x80]);
  return static_cast<wchar_t>(byte);
}

}  // namespace

std::wstring AnsiToWide(std::string_view ansi) {
  std::wstring wide;
  wide.reserve(ansi.size());
  for (char c : ansi) wide.push_back(CharOfByte(static_cast<unsigned char>(c)));
  return wide;
}

std::string WideToAnsi(std::wstring_view wide) {
  std::string ansi;
  ansi.reserve(wide.size());
  for (wchar_t c : wide) {
    std::optional<unsigned> code = AnsiCodeOf(c);
    ansi.push_back(code ? static_cast<char>(*code) : '?');
  }
  return ansi;
}

std::optional<unsigned> AnsiCodeOf(wchar_t c) {
  auto value = static_cast<std::uint32_t>(c);
  if (value < 0x80 || (value >= 0xA0 && value <= 0xFF)) return value;
  for (unsigned i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == value) return 0x80 + i;
  }
  return std::nullopt;
}

std::optional<wchar_t> CharOfAnsiCode(unsigned code) {
  if (code > 0xFF) return std::nullopt;
  return CharOfByte(static_cast<unsigned char>(code));
}

}  // namespace tavrine::platform
