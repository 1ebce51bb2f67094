#include "platform/ini_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/path.h"

namespace tavrine::platform {

namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

// The file as lines of bytes, with what is needed to write it back the same way.
struct IniText {
  bool utf8 = false;  // a UTF-8 byte-order mark; otherwise ANSI
  std::string eol = "\r\n";
  std::vector<std::string> lines;
};

enum class LineKind { kOther, kSection, kKey };

struct ParsedLine {
  LineKind kind = LineKind::kOther;
  std::wstring name;   // section or key, trimmed
  std::wstring value;  // raw text after '='
};

bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

std::wstring Trim(std::wstring_view text) {
  std::size_t begin = 0, end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return std::wstring(text.substr(begin, end - begin));
}

// Case folding for ASCII and Latin-1 letters, the range ini names use.
wchar_t Fold(wchar_t c) {
  if ((c >= L'A' && c <= L'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) return c + 32;
  return c;
}

bool SameName(std::wstring_view a, std::wstring_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Fold(a[i]) != Fold(b[i])) return false;
  }
  return true;
}

std::optional<std::string> ReadBytes(const std::wstring& file) {
  std::ifstream in(ToFsPath(file), std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

IniText SplitText(std::string bytes) {
  IniText text;
  if (bytes.compare(0, kUtf8Bom.size(), kUtf8Bom) == 0) {
    text.utf8 = true;
    bytes.erase(0, kUtf8Bom.size());
  }
  std::size_t first_break = bytes.find('\n');
  if (first_break != std::string::npos && (first_break == 0 || bytes[first_break - 1] != '\r')) {
    text.eol = "\n";
  }
  std::size_t start = 0;
  while (start < bytes.size()) {
    std::size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::size_t stop = end;
    if (stop > start && bytes[stop - 1] == '\r') --stop;
    text.lines.push_back(bytes.substr(start, stop - start));
    start = end + 1;
  }
  return text;
}

std::wstring Decode(const IniText& text, const std::string& line) {
  return text.utf8 ? Utf8ToWide(line) : AnsiToWide(line);
}

std::string Encode(const IniText& text, const std::wstring& line) {
  return text.utf8 ? WideToUtf8(line) : WideToAnsi(line);
}

ParsedLine Parse(const std::wstring& line) {
  ParsedLine parsed;
  std::wstring trimmed = Trim(line);
  if (trimmed.empty() || trimmed[0] == L';') return parsed;
  if (trimmed[0] == L'[') {
    std::size_t close = trimmed.rfind(L']');
    if (close == std::wstring::npos) return parsed;
    parsed.kind = LineKind::kSection;
    parsed.name = Trim(std::wstring_view(trimmed).substr(1, close - 1));
    return parsed;
  }
  std::size_t equals = trimmed.find(L'=');
  if (equals == std::wstring::npos) return parsed;
  parsed.kind = LineKind::kKey;
  parsed.name = Trim(std::wstring_view(trimmed).substr(0, equals));
  parsed.value = trimmed.substr(equals + 1);
  return parsed;
}

std::wstring CleanValue(const std::wstring& raw) {
  std::wstring value = Trim(raw);
  if (value.size() >= 2 && (value.front() == L'"' || value.front() == L'\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  if (value.size() > kIniValueMax) value.resize(kIniValueMax);
  return value;
}

// Where the section's lines are: its header and one past its last non-blank line.
struct SectionSpan {
  std::size_t header = 0;
  std::size_t end = 0;
  std::optional<std::size_t> key_line;
};

std::optional<SectionSpan> FindSection(const IniText& text, const std::wstring& section,
                                       const std::wstring& key) {
  std::optional<SectionSpan> span;
  for (std::size_t i = 0; i < text.lines.size(); ++i) {
    std::wstring line = Decode(text, text.lines[i]);
    ParsedLine parsed = Parse(line);
    if (parsed.kind == LineKind::kSection) {
      // Only the first section of that name counts, as with the Windows reader.
      if (span) break;
      if (SameName(parsed.name, section)) span = SectionSpan{i, i + 1, std::nullopt};
      continue;
    }
    if (!span) continue;
    if (!Trim(line).empty()) span->end = i + 1;
    if (parsed.kind == LineKind::kKey && !span->key_line && SameName(parsed.name, key)) {
      span->key_line = i;
    }
  }
  return span;
}

bool WriteAtomically(const std::wstring& file, const std::string& bytes) {
  std::string target = ToFsPath(file).native();
  mode_t mode = 0644;
  struct stat existing {};
  if (stat(target.c_str(), &existing) == 0) mode = existing.st_mode & 07777;

  // Unique per process and per call, so concurrent writers never share a temp file.
  static std::atomic<unsigned> counter{0};
  std::string temp = target + ".tmp-" + std::to_string(getpid()) + "-" + std::to_string(counter++);
  int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  bool ok = true;
  std::size_t done = 0;
  while (ok && done < bytes.size()) {
    ssize_t written = write(fd, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    ok = written > 0;
    if (ok) done += static_cast<std::size_t>(written);
  }
  ok = ok && fchmod(fd, mode) == 0 && fsync(fd) == 0;
  ok = (close(fd) == 0) && ok;
  ok = ok && rename(temp.c_str(), target.c_str()) == 0;
  if (!ok) unlink(temp.c_str());
  return ok;
}

}  // namespace

std::wstring ReadIniString(const std::wstring& section, const std::wstring& key,
                           const std::wstring& file) {
  std::optional<std::string> bytes = ReadBytes(file);
  if (!bytes) return {};
  IniText text = SplitText(std::move(*bytes));
  std::optional<SectionSpan> span = FindSection(text, section, key);
  if (!span || !span->key_line) return {};
  return CleanValue(Parse(Decode(text, text.lines[*span->key_line])).value);
}

bool WriteIniString(const std::wstring& section, const std::wstring& key,
                    const std::wstring& value, const std::wstring& file) {
  if (section.empty() || key.empty()) return false;
  std::optional<std::string> bytes = ReadBytes(file);
  IniText text = SplitText(bytes ? std::move(*bytes) : std::string());

  std::optional<SectionSpan> span = FindSection(text, section, key);
  if (span && span->key_line) {
    std::wstring name = Parse(Decode(text, text.lines[*span->key_line])).name;
    text.lines[*span->key_line] = Encode(text, name + L"=" + value);
  } else if (span) {
    text.lines.insert(text.lines.begin() + static_cast<std::ptrdiff_t>(span->end),
                      Encode(text, key + L"=" + value));
  } else {
    while (!text.lines.empty() && text.lines.back().empty()) text.lines.pop_back();
    if (!text.lines.empty()) text.lines.emplace_back();
    text.lines.push_back(Encode(text, L"[" + section + L"]"));
    text.lines.push_back(Encode(text, key + L"=" + value));
  }

  std::string out = text.utf8 ? std::string(kUtf8Bom) : std::string();
  for (const std::string& line : text.lines) out += line + text.eol;
  return WriteAtomically(file, out);
}

}  // namespace tavrine::platform
