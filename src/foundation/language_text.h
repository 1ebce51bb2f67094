#pragma once
#include <string>

namespace tavrine::foundation {

// The localized text with this number for the configured language, "" when
// there is none. Texts live beside the library in Lang<sep><Language>.ini,
// section "Strings", key = the number.
std::wstring LanguageText(int number);

std::wstring LanguageFilePath(const std::wstring& language);

}  // namespace tavrine::foundation
