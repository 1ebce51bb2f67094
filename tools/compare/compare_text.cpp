#include "compare_text.h"

#include <cstdio>

namespace tavrine::refcompare {

namespace {

using reftools::AppendUtf16Le;
using reftools::AppendUtf8;
using reftools::DecodeUtf16Le;
using reftools::DecodeUtf8;

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
  std::string t = Trim(text);
  if (t.size() < 2 || t.front() != '<' || t.back() != '>') return std::nullopt;
  std::size_t last_open = t.rfind('<');
  if (last_open > 0 && t[last_open - 1] == '>') {
    return Invocation{t.substr(1, last_open - 2), t.substr(last_open + 1, t.size() - last_open - 2)};
  }
  return Invocation{t.substr(1, t.size() - 2), ""};
}

std::string DecodeTextFile(std::string_view bytes) {
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') {
    // Lone surrogates are kept, so such a file name comes back unchanged.
    std::string out;
    for (char32_t c : DecodeUtf16Le(bytes.substr(2))) AppendUtf8(out, c);
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

std::map<std::string, RemoteEntry> ParseListing(std::string_view text) {
  std::map<std::string, RemoteEntry> entries;
  for (const std::string& line : SplitLines(text)) {
    if (Trim(line).size() < 3) break;
    std::vector<std::string> fields = SplitFields(line);
    if (fields.size() < 5) continue;
    RemoteEntry entry;
    try {
      entry.size = std::stoll(fields[2]);
    } catch (...) {
      continue;
    }
    entry.date = fields[3];
    entries[AsciiLower(fields[0])] = entry;
  }
  return entries;
}

std::string RemoteForm(std::string local) {
  for (char& c : local)
    if (c == '/') c = '\\';
  return local;
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
