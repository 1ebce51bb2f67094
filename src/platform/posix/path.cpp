#include "platform/path.h"

namespace tavrine::platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void AppendUtf8(char32_t code, std::string& out) {
  if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = kReplacement;
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (code >> 6)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else if (code < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (code >> 12)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (code >> 18)));
    out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
  }
}

}  // namespace

std::string WideToUtf8(std::wstring_view wide) {
  std::string out;
  out.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    auto code = static_cast<char32_t>(wide[i]);
    // Text that came from UTF-16 files may still hold surrogate pairs.
    if (IsHighSurrogate(code) && i + 1 < wide.size() &&
        IsLowSurrogate(static_cast<char32_t>(wide[i + 1]))) {
      code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(wide[i + 1]) - 0xDC00);
      ++i;
    }
    AppendUtf8(code, out);
  }
  return out;
}

std::wstring Utf8ToWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    auto lead = static_cast<unsigned char>(utf8[i]);
    std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3
                                       : (lead >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + length > utf8.size()) {
      out.push_back(static_cast<wchar_t>(kReplacement));
      ++i;
      continue;
    }
    char32_t code = length == 1 ? lead : lead & (0x7F >> length);
    bool valid = true;
    for (std::size_t k = 1; k < length; ++k) {
      auto next = static_cast<unsigned char>(utf8[i + k]);
      if ((next & 0xC0) != 0x80) {
        valid = false;
        break;
      }
      code = (code << 6) | (next & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (!valid || code < kSmallest[length] || code > 0x10FFFF ||
        (code >= 0xD800 && code <= 0xDFFF)) {
      out.push_back(static_cast<wchar_t>(kReplacement));
      ++i;
      continue;
    }
    out.push_back(static_cast<wchar_t>(code));
    i += length;
  }
  return out;
}

std::filesystem::path ToFsPath(const std::wstring& path) {
  return std::filesystem::path(WideToUtf8(path));
}

std::wstring FromFsPath(const std::filesystem::path& path) { return Utf8ToWide(path.native()); }

}  // namespace tavrine::platform
