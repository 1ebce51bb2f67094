#include "foundation/time_format.h"

#include <cwchar>

namespace tavrine::foundation {

std::wstring FormatTraceTimestamp(const platform::LocalTime& t) {
  wchar_t buffer[32];
  std::swprintf(buffer, std::size(buffer), L"%02d-%02d-%04d %02d:%02d:%02d", t.month, t.day,
                t.year, t.hour, t.minute, t.second);
  return buffer;
}

std::wstring FormatExchangeFolderName(const platform::LocalTime& t) {
  wchar_t buffer[32];
  std::swprintf(buffer, std::size(buffer), L"%d_%02d_%02d_%03d", t.hour, t.minute, t.second,
                t.millisecond);
  return buffer;
}

}  // namespace tavrine::foundation
