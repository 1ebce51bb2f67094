#include "platform/registry.h"

#include <cstdint>

namespace tavrine::platform {

namespace {

// Simple case folding close to the registry's: ASCII, Latin-1, Latin
// Extended-A pairs, Greek and Cyrillic capitals.
wchar_t Fold(wchar_t c) {
  auto v = static_cast<std::uint32_t>(c);
  if (v >= L'A' && v <= L'Z') return static_cast<wchar_t>(v + 32);
  if (v >= 0xC0 && v <= 0xDE && v != 0xD7) return static_cast<wchar_t>(v + 32);
  if (v == 0x178) return static_cast<wchar_t>(0xFF);
  if (v >= 0x100 && v <= 0x17E && v != 0x130 && v != 0x131 && v != 0x138 && v != 0x149) {
    bool odd_is_upper = (v >= 0x139 && v <= 0x148) || (v >= 0x179 && v <= 0x17E);
    bool lower = odd_is_upper ? (v % 2 == 0) : (v % 2 == 1);
    return lower ? c : static_cast<wchar_t>(v + 1);
  }
  if (v >= 0x391 && v <= 0x3A9 && v != 0x3A2) return static_cast<wchar_t>(v + 32);
  if (v >= 0x410 && v <= 0x42F) return static_cast<wchar_t>(v + 32);
  if (v >= 0x400 && v <= 0x40F) return static_cast<wchar_t>(v + 80);
  return c;
}

}  // namespace

bool SameRegistryName(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Fold(a[i]) != Fold(b[i])) return false;
  }
  return true;
}

}  // namespace tavrine::platform
