#include "profile/character_shift.h"

#include "platform/code_page.h"

namespace tavrine::profile {

namespace {

constexpr unsigned kShift = 2;
constexpr unsigned kCodes = 256;

// ANSI code of a single-byte character; nullopt otherwise.
std::optional<unsigned> SingleByteCode(wchar_t c) {
  std::optional<unsigned> code = platform::AnsiCodeOf(c);
  if (!code || *code >= kCodes) return std::nullopt;
  return code;
}

}  // namespace

std::wstring ShiftCharacters(const std::wstring& text) {
  std::wstring shifted;
  shifted.reserve(text.size());
  for (wchar_t c : text) {
    std::optional<unsigned> code = SingleByteCode(c);
    if (!code) continue;
    if (std::optional<wchar_t> moved = platform::CharOfAnsiCode(*code + kShift)) {
      shifted += *moved;
    }
  }
  return shifted;
}

std::wstring UnshiftCharacters(const std::wstring& text) {
  std::wstring plain;
  plain.reserve(text.size());
  for (wchar_t c : text) {
    std::optional<unsigned> code = SingleByteCode(c);
    if (!code || *code < kShift) continue;
    if (std::optional<wchar_t> moved = platform::CharOfAnsiCode(*code - kShift)) plain += *moved;
  }
  return plain;
}

std::optional<std::wstring> ShiftForStorage(const std::wstring& text) {
  std::wstring shifted;
  shifted.reserve(text.size());
  for (wchar_t c : text) {
    std::optional<unsigned> code = SingleByteCode(c);
    if (!code) {
      shifted += c;
      continue;
    }
    std::optional<wchar_t> moved = platform::CharOfAnsiCode((*code + kShift) % kCodes);
    if (!moved) return std::nullopt;
    shifted += *moved;
  }
  // A multi-byte code page can map several characters to one code; only a
  // text that comes back exactly is worth storing.
  if (UnshiftFromStorage(shifted) != text) return std::nullopt;
  return shifted;
}

std::wstring UnshiftFromStorage(const std::wstring& stored) {
  std::wstring plain;
  plain.reserve(stored.size());
  for (wchar_t c : stored) {
    std::optional<unsigned> code = SingleByteCode(c);
    if (!code) {
      plain += c;
      continue;
    }
    if (std::optional<wchar_t> moved = platform::CharOfAnsiCode((*code + kCodes - kShift) % kCodes)) {
      plain += *moved;
    }
  }
  return plain;
}

}  // namespace tavrine::profile
