#include <windows.h>
#include <wincrypt.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/secret_protector.h"

namespace tavrine::platform {

namespace {

// DPAPI hands its output in LocalAlloc memory.
struct LocalFreeDeleter {
  void operator()(BYTE* data) const { LocalFree(data); }
};
using LocalBytes = std::unique_ptr<BYTE, LocalFreeDeleter>;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::wstring ToBase64(const BYTE* data, std::size_t size) {
  std::wstring out;
  out.reserve((size + 2) / 3 * 4);
  for (std::size_t i = 0; i < size; i += 3) {
    std::uint32_t chunk = static_cast<std::uint32_t>(data[i]) << 16;
    if (i + 1 < size) chunk |= static_cast<std::uint32_t>(data[i + 1]) << 8;
    if (i + 2 < size) chunk |= data[i + 2];
    out += static_cast<wchar_t>(kAlphabet[(chunk >> 18) & 0x3F]);
    out += static_cast<wchar_t>(kAlphabet[(chunk >> 12) & 0x3F]);
    out += i + 1 < size ? static_cast<wchar_t>(kAlphabet[(chunk >> 6) & 0x3F]) : L'=';
    out += i + 2 < size ? static_cast<wchar_t>(kAlphabet[chunk & 0x3F]) : L'=';
  }
  return out;
}

std::optional<std::vector<BYTE>> FromBase64(std::wstring_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::vector<BYTE> out;
  out.reserve(text.size() / 4 * 3);
  std::uint32_t chunk = 0;
  int bits = 0;
  std::size_t padding = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    wchar_t c = text[i];
    if (c == L'=') {
      // Padding only at the very end, at most two.
      if (i + 2 < text.size()) return std::nullopt;
      ++padding;
      continue;
    }
    if (padding > 0) return std::nullopt;
    const char* found = c < 0x80 ? std::strchr(kAlphabet, static_cast<char>(c)) : nullptr;
    if (found == nullptr || c == 0) return std::nullopt;
    chunk = (chunk << 6) | static_cast<std::uint32_t>(found - kAlphabet);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out.push_back(static_cast<BYTE>((chunk >> bits) & 0xFF));
    }
  }
  return out;
}

}  // namespace

std::optional<std::wstring> ProtectSecret(const std::wstring& plain) {
  DATA_BLOB in{static_cast<DWORD>(plain.size() * sizeof(wchar_t)),
               reinterpret_cast<BYTE*>(const_cast<wchar_t*>(plain.data()))};
  DATA_BLOB out{};
  if (!CryptProtectData(&in, L"TavrinEUI", nullptr, nullptr, nullptr,
                        CRYPTPROTECT_UI_FORBIDDEN, &out)) {
    return std::nullopt;
  }
  LocalBytes owner(out.pbData);
  return ToBase64(out.pbData, out.cbData);
}

std::optional<std::wstring> UnprotectSecret(const std::wstring& stored) {
  std::optional<std::vector<BYTE>> blob = FromBase64(stored);
  if (!blob || blob->empty()) return std::nullopt;
  DATA_BLOB in{static_cast<DWORD>(blob->size()), blob->data()};
  DATA_BLOB out{};
  if (!CryptUnprotectData(&in, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          &out)) {
    return std::nullopt;
  }
  LocalBytes owner(out.pbData);
  if (out.cbData % sizeof(wchar_t) != 0) return std::nullopt;
  std::wstring plain(out.cbData / sizeof(wchar_t), L'\0');
  if (out.cbData != 0) std::memcpy(plain.data(), out.pbData, out.cbData);
  // The plain copy in DPAPI's buffer is wiped before it goes back to the heap.
  SecureZeroMemory(out.pbData, out.cbData);
  return plain;
}

}  // namespace tavrine::platform
