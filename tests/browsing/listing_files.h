#pragma once
#include <filesystem>
#include <fstream>
#include <string>

namespace tavrine::testing {

// A listing as the engine writes it: UTF-16LE, optionally with a BOM.
inline void WriteUtf16File(const std::filesystem::path& file, const std::wstring& text,
                           bool bom = true) {
  std::filesystem::create_directories(file.parent_path());
  std::string bytes;
  if (bom) bytes += "\xFF\xFE";
  for (wchar_t c : text) {
    auto unit = static_cast<std::uint32_t>(c);
    if (unit >= 0x10000) {
      unit -= 0x10000;
      std::uint32_t high = 0xD800 + (unit >> 10), low = 0xDC00 + (unit & 0x3FF);
      bytes += static_cast<char>(high & 0xFF);
      bytes += static_cast<char>(high >> 8);
      unit = low;
    }
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>((unit >> 8) & 0xFF);
  }
  std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace tavrine::testing
