#pragma once
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

// Text helpers the reference tools share; text is UTF-8 inside the tools.
namespace tavrine::reftools {

void AppendUtf8(std::string& out, char32_t c);
// Code points of UTF-8 text. A byte that starts no well-formed sequence gives
// U+FFFD and sets `*well_formed` (when given) to false.
std::u32string DecodeUtf8(std::string_view text, bool* well_formed = nullptr);

// One code point as UTF-16LE, a surrogate pair above U+FFFF.
void AppendUtf16Le(std::string& out, char32_t c);
// Code points of UTF-16LE bytes (a BOM is not skipped): surrogate pairs
// joined, a lone surrogate kept as it is, an odd last byte dropped.
std::u32string DecodeUtf16Le(std::string_view bytes);

// Lines ended by CR, LF or CR LF; a last line without an end counts.
std::vector<std::string> SplitLines(std::string_view text);
// Blanks and tabs dropped at both ends.
std::string Trim(std::string_view text);
// ASCII letters lowered: remote names compare without regard to ASCII case.
std::string AsciiLower(std::string_view text);
// Two lowercase hex digits a byte.
std::string HexBytes(std::string_view bytes);
// "MM-DD-YYYY HH:MM:SS" in UTC, the date form of listings and the vault.
std::string FormatDate(std::chrono::sys_seconds time);

}  // namespace tavrine::reftools
