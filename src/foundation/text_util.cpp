#include "foundation/text_util.h"

#include <charconv>
#include <cmath>
#include <cwctype>
#include <limits>

namespace tavrine::foundation {

namespace {
bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }
}  // namespace

std::wstring Trim(std::wstring_view text) {
  std::size_t begin = 0, end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return std::wstring(text.substr(begin, end - begin));
}

std::wstring ToLower(std::wstring_view text) {
  std::wstring lower(text);
  for (auto& c : lower) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
  return lower;
}

bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() && ToLower(a) == ToLower(b);
}

std::optional<double> ParseNumber(std::wstring_view text) {
  std::wstring trimmed = Trim(text);
  if (trimmed.empty()) return std::nullopt;
  // Hand-parsed so that neither the locale nor hex/inf/nan spellings apply.
  std::size_t i = 0;
  bool negative = false;
  if (trimmed[i] == L'+' || trimmed[i] == L'-') negative = trimmed[i++] == L'-';
  std::string digits;
  bool any_digit = false, seen_point = false;
  for (; i < trimmed.size(); ++i) {
    wchar_t c = trimmed[i];
    if (c >= L'0' && c <= L'9') {
      digits.push_back(static_cast<char>(c));
      any_digit = true;
    } else if (c == L'.' && !seen_point) {
      digits.push_back('.');
      seen_point = true;
    } else {
      break;
    }
  }
  if (!any_digit) return std::nullopt;
  if (i < trimmed.size() && (trimmed[i] == L'e' || trimmed[i] == L'E')) {
    std::size_t j = i + 1;
    std::string exponent = "e";
    if (j < trimmed.size() && (trimmed[j] == L'+' || trimmed[j] == L'-')) {
      exponent.push_back(static_cast<char>(trimmed[j++]));
    }
    std::size_t first_digit = j;
    while (j < trimmed.size() && trimmed[j] >= L'0' && trimmed[j] <= L'9') {
      exponent.push_back(static_cast<char>(trimmed[j++]));
    }
    if (j == first_digit) return std::nullopt;
    digits += exponent;
    i = j;
  }
  if (i != trimmed.size()) return std::nullopt;
  // from_chars ignores the host process's locale.
  double value = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return negative ? -value : value;
}

namespace {
template <typename Int>
std::optional<Int> ParseRounded(std::wstring_view text) {
  auto value = ParseNumber(text);
  if (!value) return std::nullopt;
  double rounded = std::nearbyint(*value);  // default rounding mode: half to even
  if (rounded < static_cast<double>(std::numeric_limits<Int>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<Int>::max())) {
    return std::nullopt;
  }
  return static_cast<Int>(rounded);
}
}  // namespace

std::optional<std::int16_t> ParseInt16(std::wstring_view text) {
  return ParseRounded<std::int16_t>(text);
}

std::optional<std::int32_t> ParseInt32(std::wstring_view text) {
  return ParseRounded<std::int32_t>(text);
}

double LeadingNumber(std::wstring_view text) {
  std::wstring trimmed = Trim(text.substr(0, 256));
  std::size_t candidate = trimmed.find_first_not_of(L"+-0123456789.eE");
  if (candidate == std::wstring::npos) candidate = trimmed.size();
  // Longest prefix that still reads as a number.
  for (std::size_t length = candidate; length > 0; --length) {
    if (auto value = ParseNumber(std::wstring_view(trimmed).substr(0, length))) return *value;
  }
  return 0;
}

std::int32_t RoundToInt32(double value) {
  if (std::isnan(value)) return 0;
  double rounded = std::nearbyint(value);
  if (rounded <= static_cast<double>(std::numeric_limits<std::int32_t>::min())) {
    return std::numeric_limits<std::int32_t>::min();
  }
  if (rounded >= static_cast<double>(std::numeric_limits<std::int32_t>::max())) {
    return std::numeric_limits<std::int32_t>::max();
  }
  return static_cast<std::int32_t>(rounded);
}

std::wstring NarrowToWide(std::string_view ascii) {
  std::wstring wide;
  wide.reserve(ascii.size());
  for (char c : ascii) wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
  return wide;
}

std::string WideToNarrowLossy(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (wchar_t c : text) narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
  return narrow;
}

}  // namespace tavrine::foundation
