#include "compare_text.h"

#include <cstdio>

namespace tavrine::refcompare {

namespace {

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

void AppendUtf16Le(std::string& out, char32_t c) {
  auto unit = [&out](char32_t u) {
    out += static_cast<char>(u & 0xFF);
    out += static_cast<char>((u >> 8) & 0xFF);
  };
  if (c >= 0x10000) {
    c -= 0x10000;
    unit(0xD800 | (c >> 10));
    unit(0xDC00 | (c & 0x3FF));
  } else {
    unit(c);
  }
}

// Code points of UTF-8 text; a broken sequence gives U+FFFD.
std::u32string DecodeUtf8(std::string_view text) {
  std::u32string out;
  for (std::size_t i = 0; i < text.size();) {
    auto b = static_cast<unsigned char>(text[i]);
    int extra = b < 0x80 ? 0 : (b >> 5) == 6 ? 1 : (b >> 4) == 14 ? 2 : (b >> 3) == 30 ? 3 : -1;
    if (extra < 0) {
      out += U'\uFFFD';
      ++i;
      continue;
    }
    char32_t c = extra == 0 ? b : b & (0x3F >> extra);
    bool ok = true;
    for (int k = 1; k <= extra; ++k) {
      if (i + k >= text.size() || (static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      c = (c << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
    }
    if (!ok) {
      out += U'\uFFFD';
      ++i;
      continue;
    }
    out += c;
    i += extra + 1;
  }
  return out;
}

std::string Trimmed(std::string_view text) {
  std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  std::size_t end = text.find_last_not_of(" \t");
  return std::string(text.substr(begin, end - begin + 1));
}

std::vector<std::string> SplitFields(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (;;) {
    std::size_t slash = line.find('/', start);
    fields.push_back(line.substr(start, slash - start));
    if (slash == std::string::npos) return fields;
    start = slash + 1;
  }
}

}  // namespace

std::optional<Invocation> ParseParameters(std::string_view text) {
  std::string t = Trimmed(text);
  if (t.size() < 2 || t.front() != '<' || t.back() != '>') return std::nullopt;
  std::size_t last_open = t.rfind('<');
  if (last_open > 0 && t[last_open - 1] == '>') {
    return Invocation{t.substr(1, last_open - 2), t.substr(last_open + 1, t.size() - last_open - 2)};
  }
  return Invocation{t.substr(1, t.size() - 2), ""};
}

std::string DecodeTextFile(std::string_view bytes) {
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') {
    std::string out;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
      char32_t u = static_cast<unsigned char>(bytes[i]) |
                   (static_cast<unsigned char>(bytes[i + 1]) << 8);
      if (u >= 0xD800 && u < 0xDC00 && i + 3 < bytes.size()) {
        char32_t low = static_cast<unsigned char>(bytes[i + 2]) |
                       (static_cast<unsigned char>(bytes[i + 3]) << 8);
        if (low >= 0xDC00 && low < 0xE000) {
          u = 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
          i += 2;
        }
      }
      AppendUtf8(out, u);
    }
    return out;
  }
  if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  return std::string(bytes);
}

std::string EncodeUtf16Lines(const std::vector<std::string>& lines) {
  std::string out = "\xFF\xFE";
  for (const std::string& line : lines) {
    for (char32_t c : DecodeUtf8(line)) AppendUtf16Le(out, c);
    AppendUtf16Le(out, U'\r');
    AppendUtf16Le(out, U'\n');
  }
  return out;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      lines.push_back(line);
      line.clear();
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      line += text[i];
    }
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

std::map<std::string, RemoteEntry> ParseListing(std::string_view text) {
  std::map<std::string, RemoteEntry> entries;
  for (const std::string& line : SplitLines(text)) {
    if (Trimmed(line).size() < 3) break;
    std::vector<std::string> fields = SplitFields(line);
    if (fields.size() < 5) continue;
    RemoteEntry entry;
    try {
      entry.size = std::stoll(fields[2]);
    } catch (...) {
      continue;
    }
    entry.date = fields[3];
    entries[FoldCase(fields[0])] = entry;
  }
  return entries;
}

std::string FoldCase(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

std::string RemoteForm(std::string local) {
  for (char& c : local)
    if (c == '/') c = '\\';
  return local;
}

std::string FormatListingDate(std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  auto seconds = floor<std::chrono::seconds>(time);
  auto day = floor<days>(seconds);
  year_month_day date{day};
  hh_mm_ss<std::chrono::seconds> clock{seconds - day};
  char text[32];
  std::snprintf(text, sizeof text, "%02u-%02u-%04d %02d:%02d:%02d",
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(date.year()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

std::string HexBytes(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (char c : bytes) {
    auto b = static_cast<unsigned char>(c);
    hex += kDigits[b >> 4];
    hex += kDigits[b & 0xF];
  }
  return hex;
}

std::string EscapeField(std::string_view text) {
  std::string out;
  for (char c : text) {
    auto b = static_cast<unsigned char>(c);
    if (b < 0x20 || b == '%' || b == 0x7F) {
      char code[4];
      std::snprintf(code, sizeof code, "%%%02X", b);
      out += code;
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace tavrine::refcompare
