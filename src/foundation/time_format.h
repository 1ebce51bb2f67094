#pragma once
#include <string>

#include "platform/clock.h"

namespace tavrine::foundation {

// "mm-dd-yyyy HH:mm:ss"
std::wstring FormatTraceTimestamp(const platform::LocalTime& time);
// "H_mm_ss_" and three-digit milliseconds: the name of an exchange folder.
std::wstring FormatExchangeFolderName(const platform::LocalTime& time);

}  // namespace tavrine::foundation
