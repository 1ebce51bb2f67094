#include "journal.h"

#include "tool_text.h"

namespace tavrine::refengine {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

// Fields are split by tabs and records by line ends, so those (and '%') are
// written as %XX; everything else, non-ASCII UTF-8 included, stays readable.
std::string EscapeText(std::string_view text) {
  std::string escaped;
  for (char c : text) {
    auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || c == '%') {
      escaped += '%';
      escaped += kHexDigits[byte >> 4];
      escaped += kHexDigits[byte & 0xF];
    } else {
      escaped += c;
    }
  }
  return escaped;
}

}  // namespace

std::string FormatJournalLine(const JournalRecord& record) {
  std::string line = "code=" + EscapeText(record.code);
  line += "\tanswer=" + EscapeText(record.answer);
  line += "\tprogram=" + EscapeText(record.program);
  line += "\tfolder=" + EscapeText(record.folder);
  line += "\tcwd=" + EscapeText(record.cwd);
  line += "\tparams=" + EscapeText(record.params);
  for (const auto& [name, bytes] : record.files)
    line += "\t" + EscapeText(name) + "=" + (bytes ? reftools::HexBytes(*bytes) : std::string("-"));
  line += "\tnote=" + EscapeText(record.note);
  return line + "\n";
}

std::size_t CountRuns(std::string_view journal, std::string_view code) {
  const std::string prefix = "code=" + std::string(code) + "\t";
  std::size_t count = 0;
  while (!journal.empty()) {
    std::size_t end = journal.find('\n');
    if (journal.substr(0, end).substr(0, prefix.size()) == prefix) ++count;
    journal = end == std::string_view::npos ? std::string_view() : journal.substr(end + 1);
  }
  return count;
}

}  // namespace tavrine::refengine
