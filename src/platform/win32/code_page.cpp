#include "platform/code_page.h"

#include <windows.h>

#include <climits>

namespace tavrine::platform {

std::wstring AnsiToWide(std::string_view ansi) {
  if (ansi.empty() || ansi.size() > INT_MAX) return {};
  int size = static_cast<int>(ansi.size());
  int length = MultiByteToWideChar(CP_ACP, 0, ansi.data(), size, nullptr, 0);
  if (length <= 0) return {};
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_ACP, 0, ansi.data(), size, wide.data(), length);
  return wide;
}

std::string WideToAnsi(std::wstring_view wide) {
  if (wide.empty() || wide.size() > INT_MAX) return {};
  int size = static_cast<int>(wide.size());
  int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  if (length <= 0) return {};
  std::string ansi(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide.data(), size, ansi.data(), length, nullptr, nullptr);
  return ansi;
}

std::optional<unsigned> AnsiCodeOf(wchar_t c) {
  char bytes[4] = {};
  BOOL used_default = FALSE;
  // No best fit: a character the code page lacks must not pass as a look-alike.
  int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &c, 1, bytes, sizeof bytes,
                                   nullptr, &used_default);
  if (length != 1 || used_default) return std::nullopt;
  return static_cast<unsigned char>(bytes[0]);
}

std::optional<wchar_t> CharOfAnsiCode(unsigned code) {
  if (code > 0xFF) return std::nullopt;
  char byte = static_cast<char>(code);
  wchar_t wide[2] = {};
  int length = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &byte, 1, wide, 2);
  if (length != 1) return std::nullopt;
  return wide[0];
}

}  // namespace tavrine::platform
