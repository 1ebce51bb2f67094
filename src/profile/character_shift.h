#pragma once
#include <optional>
#include <string>

namespace tavrine::profile {

// The request files carry the user name and passwords with each character's
// code in the ANSI code page raised by 2 ("abc" -> "cde", "~" -> code 128).
// A character without an ANSI code, or whose code plus 2 has no character, is
// left out: the step that fails is skipped and the rest goes on.
std::wstring ShiftCharacters(const std::wstring& text);
// The inverse: each code lowered by 2; characters that cannot be are left out.
std::wstring UnshiftCharacters(const std::wstring& text);

// The shift the profile store applies to a secret before protecting it. The
// same as ShiftCharacters wherever that carries the character; so that no
// password is mangled, codes 254 and 255 wrap to 0 and 1 and characters
// outside the code page stay as they are. nullopt when the code page cannot
// give the text back exactly (possible only with multi-byte code pages).
std::optional<std::wstring> ShiftForStorage(const std::wstring& text);
std::wstring UnshiftFromStorage(const std::wstring& stored);

}  // namespace tavrine::profile
