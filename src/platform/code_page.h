#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace tavrine::platform {

// "ANSI" is the system code page on Windows and Windows-1252 elsewhere.
std::wstring AnsiToWide(std::string_view ansi);
std::string WideToAnsi(std::wstring_view wide);

// The character's code in the ANSI code page; nullopt when it has none.
std::optional<unsigned> AnsiCodeOf(wchar_t c);
// The character with this ANSI code; nullopt when the code page has none.
std::optional<wchar_t> CharOfAnsiCode(unsigned code);

}  // namespace tavrine::platform
