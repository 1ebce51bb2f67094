#include "platform/ini_file.h"

#include <windows.h>

#include "platform/code_page.h"

namespace tavrine::platform {

std::wstring ReadIniString(const std::wstring& section, const std::wstring& key,
                           const std::wstring& file) {
  char buffer[kIniValueMax + 1] = {};
  std::string ansi_section = WideToAnsi(section);
  std::string ansi_key = WideToAnsi(key);
  std::string ansi_file = WideToAnsi(file);
  DWORD length = GetPrivateProfileStringA(ansi_section.c_str(), ansi_key.c_str(), "", buffer,
                                          static_cast<DWORD>(sizeof buffer), ansi_file.c_str());
  return AnsiToWide(std::string_view(buffer, length));
}

bool WriteIniString(const std::wstring& section, const std::wstring& key,
                    const std::wstring& value, const std::wstring& file) {
  // Empty names would delete a section or key instead of writing one.
  if (section.empty() || key.empty()) return false;
  std::string ansi_section = WideToAnsi(section);
  std::string ansi_key = WideToAnsi(key);
  std::string ansi_value = WideToAnsi(value);
  std::string ansi_file = WideToAnsi(file);
  return WritePrivateProfileStringA(ansi_section.c_str(), ansi_key.c_str(), ansi_value.c_str(),
                                    ansi_file.c_str()) != FALSE;
}

}  // namespace tavrine::platform
