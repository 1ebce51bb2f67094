#include "profile/safe_name.h"

#include <array>
#include <cstdint>

namespace tavrine::profile {

namespace {

constexpr std::size_t kMaxNameLength = 255;

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

bool IsReservedCharacter(wchar_t c) {
  if (static_cast<std::uint32_t>(c) < 0x20 || c == 0x7F) return true;
  for (wchar_t reserved : std::wstring_view(L"\\/<>:\"|?*")) {
    if (c == reserved) return true;
  }
  return false;
}

// Windows opens the device for these names whatever the extension.
bool IsDeviceName(std::wstring_view name) {
  std::wstring_view stem = name.substr(0, name.find(L'.'));
  while (!stem.empty() && stem.back() == L' ') stem.remove_suffix(1);
  static constexpr std::array<std::wstring_view, 4> kPlain = {L"con", L"prn", L"aux", L"nul"};
  for (std::wstring_view device : kPlain) {
    if (SameUserName(stem, device)) return true;
  }
  if (stem.size() == 4 && stem[3] >= L'1' && stem[3] <= L'9') {
    std::wstring_view prefix = stem.substr(0, 3);
    if (SameUserName(prefix, L"com") || SameUserName(prefix, L"lpt")) return true;
  }
  return false;
}

}  // namespace

bool SameUserName(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Fold(a[i]) != Fold(b[i])) return false;
  }
  return true;
}

bool IsSafeName(const std::wstring& name) {
  if (name.empty() || name.size() > kMaxNameLength) return false;
  if (name == L"." || name == L"..") return false;
  for (wchar_t c : name) {
    if (IsReservedCharacter(c)) return false;
  }
  if (name.back() == L'.' || name.back() == L' ') return false;
  return !IsDeviceName(name);
}

}  // namespace tavrine::profile
