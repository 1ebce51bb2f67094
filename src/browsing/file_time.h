#pragma once
#include <cstdint>
#include <string_view>

#include "browsing/records.h"

namespace tavrine::browsing {

enum class DateFailure { kNone, kOverflow, kTypeMismatch, kInvalidDate };

// "MM-DD-YYYY HH:MM:SS" taken as UTC (no time-zone shift) into 100 ns ticks
// since 1601. On failure `out` is left as it was.
DateFailure ConvertListingDate(std::wstring_view text, FileTime& out);
DateFailure ConvertListingDate(std::string_view utf8, FileTime& out);

const wchar_t* DescribeDateFailure(DateFailure failure);

// The tree's conversion: 1 on success; on failure the trace line
// "[EXCEPTION] ISysTimeToFileTime() : <why>" and 0, the record unchanged.
std::int32_t ISysTimeToFileTime(std::wstring_view dateText, FileTime& fileTime);

}  // namespace tavrine::browsing
