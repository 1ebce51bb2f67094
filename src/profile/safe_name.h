#pragma once
#include <string>
#include <string_view>

namespace tavrine::profile {

// True when a user or machine name can become a folder name under the work
// root and a registry key name without leaving either: not empty, not "." or
// "..", no path separators, no reserved characters <>:"|?*, no control
// characters, no trailing dot or space (Windows drops them, so "a." would be
// the folder "a"), not a device name (CON, NUL, COM1, LPT1.txt ...), and at
// most 255 characters (the registry's key name limit).
bool IsSafeName(const std::wstring& name);

// User names compare without regard to case, as registry keys and Windows
// folders do (ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters).
bool SameUserName(std::wstring_view a, std::wstring_view b);

}  // namespace tavrine::profile
