#pragma once
// UTF-8 lines on standard output, so the story reads the same in a Linux
// terminal (under Wine) as in a Windows console.
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace tavrine::comdemo {

inline std::string Utf8(std::wstring_view text) {
  if (text.empty()) return {};
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                       nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(), size, nullptr,
                      nullptr);
  return bytes;
}

inline std::wstring Wide(std::string_view bytes) {
  if (bytes.empty()) return {};
  const int size = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
  std::wstring text(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(), size);
  return text;
}

inline void Say(std::wstring_view line) {
  std::string bytes = Utf8(line) + "\n";
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  std::fflush(stdout);
}

}  // namespace tavrine::comdemo
