#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrine::foundation {

// Leading and trailing blanks (spaces and tabs) removed.
std::wstring Trim(std::wstring_view text);
std::wstring ToLower(std::wstring_view text);
bool EqualsIgnoreCase(std::wstring_view a, std::wstring_view b);

// A whole decimal number (blanks around it allowed, "." as the decimal mark,
// whatever the locale); nullopt when the text is not one.
std::optional<double> ParseNumber(std::wstring_view text);
// A number rounded half to even into 16 or 32 bits, as the automation
// conversions do; nullopt when it is not a number or does not fit.
std::optional<std::int16_t> ParseInt16(std::wstring_view text);
std::optional<std::int32_t> ParseInt32(std::wstring_view text);
// The number at the start of the text, 0 when there is none ("12abc" gives 12).
double LeadingNumber(std::wstring_view text);
// A double rounded half to even into 32 bits; the nearest bound when it does not fit.
std::int32_t RoundToInt32(double value);

std::wstring NarrowToWide(std::string_view ascii);
std::string WideToNarrowLossy(std::wstring_view text);

}  // namespace tavrine::foundation
