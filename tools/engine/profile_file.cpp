#include "profile_file.h"

#include "vault_text.h"

namespace tavrine::refengine {

namespace {

std::string Escape(std::string_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (char c : text) {
    auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || std::string_view("%=[]#;").find(c) != std::string_view::npos) {
      out += '%';
      out += kHex[byte >> 4];
      out += kHex[byte & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

std::string Unescape(std::string_view text) {
  auto hex = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
  };
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && hex(text[i + 1]) >= 0 && hex(text[i + 2]) >= 0) {
      out += static_cast<char>(hex(text[i + 1]) * 16 + hex(text[i + 2]));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string TrimSeparators(std::string_view path) {
  std::size_t begin = path.find_first_not_of('\\');
  if (begin == std::string_view::npos) return {};
  return std::string(path.substr(begin, path.find_last_not_of('\\') - begin + 1));
}

}  // namespace

std::string SetProfileFileValues(std::string_view file_bytes, const std::string& key_path,
                                 const std::vector<std::pair<std::string, std::string>>& values) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < file_bytes.size()) {
    std::size_t end = file_bytes.find('\n', start);
    if (end == std::string_view::npos) end = file_bytes.size();
    std::string line(file_bytes.substr(start, end - start));
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  const std::string wanted = TrimSeparators(key_path);
  std::vector<bool> done(values.size(), false);
  std::string out;
  bool in_key = false;
  auto append_missing = [&] {
    for (std::size_t v = 0; v < values.size(); ++v)
      if (!done[v]) out += Escape(values[v].first) + "=" + Escape(values[v].second) + "\n";
    done.assign(values.size(), true);
  };
  for (const std::string& line : lines) {
    if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
      if (in_key) append_missing();
      in_key = SameText(TrimSeparators(Unescape(std::string_view(line).substr(1, line.size() - 2))),
                        wanted);
      out += line + "\n";
      continue;
    }
    std::size_t equals = line.find('=');
    if (in_key && equals != std::string::npos) {
      std::string name = Unescape(std::string_view(line).substr(0, equals));
      bool replaced = false;
      for (std::size_t v = 0; v < values.size(); ++v) {
        if (!SameText(name, values[v].first)) continue;
        // Only the first line of a name counts for the library; later ones are dropped.
        if (!done[v]) out += line.substr(0, equals) + "=" + Escape(values[v].second) + "\n";
        done[v] = true;
        replaced = true;
      }
      if (replaced) continue;
    }
    if (!line.empty()) out += line + "\n";
  }
  if (in_key) append_missing();
  bool any_missing = false;
  for (bool d : done) any_missing = any_missing || !d;
  if (any_missing) {
    out += "[" + Escape(wanted) + "]\n";
    append_missing();
  }
  return out;
}

}  // namespace tavrine::refengine
