#include "foundation/text_file.h"

#include <fstream>
#include <iterator>

#include "platform/code_page.h"
#include "platform/path.h"

namespace tavrine::foundation {

namespace {

void AppendUtf16Unit(std::string& out, std::uint32_t unit) {
  out.push_back(static_cast<char>(unit & 0xFF));
  out.push_back(static_cast<char>((unit >> 8) & 0xFF));
}

void AppendUtf16(std::string& out, const std::wstring& text) {
  for (wchar_t c : text) {
    auto code = static_cast<std::uint32_t>(c);
    if (code >= 0x10000 && code <= 0x10FFFF) {
      code -= 0x10000;
      AppendUtf16Unit(out, 0xD800 + (code >> 10));
      AppendUtf16Unit(out, 0xDC00 + (code & 0x3FF));
    } else {
      AppendUtf16Unit(out, code);
    }
  }
}

std::optional<std::string> ReadAll(const std::wstring& file) {
  std::ifstream in(platform::ToFsPath(file), std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// CR, LF and CRLF each end a line; a last line without an end still counts.
template <typename Text>
std::vector<Text> SplitLines(const Text& text) {
  std::vector<Text> lines;
  Text current;
  bool pending = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto c = text[i];
    if (c == '\r' || c == '\n') {
      lines.push_back(current);
      current.clear();
      pending = false;
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      current.push_back(c);
      pending = true;
    }
  }
  if (pending) lines.push_back(current);
  return lines;
}

std::wstring DecodeUtf16Le(const std::string& bytes) {
  std::wstring text;
  std::size_t start = 0;
  if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
      static_cast<unsigned char>(bytes[1]) == 0xFE) {
    start = 2;
  }
  text.reserve((bytes.size() - start) / 2);
  for (std::size_t i = start; i + 1 < bytes.size(); i += 2) {
    std::uint32_t unit = static_cast<unsigned char>(bytes[i]) |
                         (static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8);
    if constexpr (sizeof(wchar_t) == 4) {
      if (unit >= 0xD800 && unit <= 0xDBFF && i + 3 < bytes.size()) {
        std::uint32_t low = static_cast<unsigned char>(bytes[i + 2]) |
                            (static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 3])) << 8);
        if (low >= 0xDC00 && low <= 0xDFFF) {
          text.push_back(static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
          i += 2;
          continue;
        }
      }
    }
    text.push_back(static_cast<wchar_t>(unit));
  }
  return text;
}

}  // namespace

bool WriteUtf16Lines(const std::wstring& file, const std::vector<std::wstring>& lines) {
  std::string bytes = "\xFF\xFE";
  for (const auto& line : lines) {
    AppendUtf16(bytes, line);
    AppendUtf16(bytes, L"\r\n");
  }
  std::ofstream out(platform::ToFsPath(file), std::ios::binary | std::ios::trunc);
  if (!out) return false;
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return static_cast<bool>(out);
}

std::optional<std::vector<std::wstring>> ReadAnsiLines(const std::wstring& file) {
  auto bytes = ReadAll(file);
  if (!bytes) return std::nullopt;
  std::vector<std::wstring> lines;
  for (const auto& line : SplitLines(*bytes)) lines.push_back(platform::AnsiToWide(line));
  return lines;
}

std::optional<std::vector<std::wstring>> ReadUtf16Lines(const std::wstring& file) {
  auto bytes = ReadAll(file);
  if (!bytes) return std::nullopt;
  return SplitLines(DecodeUtf16Le(*bytes));
}

bool AppendAnsiLine(const std::wstring& file, const std::wstring& line) {
  std::ofstream out(platform::ToFsPath(file), std::ios::binary | std::ios::app);
  if (!out) return false;
  std::string bytes = platform::WideToAnsi(line) + "\r\n";
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  return static_cast<bool>(out);
}

}  // namespace tavrine::foundation
