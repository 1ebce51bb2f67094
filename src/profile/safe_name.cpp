#include "profile/safe_name.h"

#include <array>
#include <cstdint>

#include "platform/registry.h"

namespace tavrine::profile {

namespace {

constexpr std::size_t kMaxNameLength = 255;

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
  return platform::SameRegistryName(a, b);
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
