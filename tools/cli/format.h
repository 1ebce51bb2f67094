#pragma once
#include <cstdint>
#include <string>

#include "browsing/records.h"

namespace tavrine::cli {

// "1.5 GB", "512 B"
std::string HumanSize(double bytes);
// "2011-07-04 18:05:09" (the listing's times are UTC); "-" for the empty value.
std::string FileTimeText(const browsing::FileTime& time);
std::string Utf8(const std::wstring& text);
std::wstring Wide(const std::string& text);
// Pads to a display width counted in code points.
std::string PadRight(const std::string& utf8, std::size_t width);
std::string PadLeft(const std::string& utf8, std::size_t width);

}  // namespace tavrine::cli
