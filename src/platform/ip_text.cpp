#include "platform/host_resolver.h"

namespace tavrine::platform {

bool IsDottedIPv4(const std::wstring& text) {
  int parts = 0;
  std::size_t i = 0;
  while (true) {
    std::size_t digits = 0;
    unsigned value = 0;
    while (i < text.size() && text[i] >= L'0' && text[i] <= L'9' && digits < 4) {
      value = value * 10 + static_cast<unsigned>(text[i] - L'0');
      ++digits;
      ++i;
    }
    if (digits == 0 || digits > 3 || value > 255) return false;
    ++parts;
    if (i == text.size()) return parts == 4;
    if (text[i] != L'.' || parts == 4) return false;
    ++i;
  }
}

}  // namespace tavrine::platform
