// The result-code table of the guide is rendered here from the message table
// and compared with the page, so that the page cannot drift from the code.
// On a mismatch the rendering is written beside the test for pasting.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "foundation/message_table.h"
#include "foundation/text_util.h"

namespace tavrine::foundation {
namespace {

constexpr const char* kBegin = "<!-- table generated from the message table: begin -->\n";
constexpr const char* kEnd = "<!-- table generated from the message table: end -->\n";

std::string Utf8Of(const std::wstring& text) {
  std::string out;
  for (wchar_t c : text) {
    const auto code = static_cast<std::uint32_t>(c);
    if (code < 0x80) {
      out += static_cast<char>(code);
    } else if (code < 0x800) {
      out += static_cast<char>(0xC0 | (code >> 6));
      out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (code >> 12));
      out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return out;
}

// The text inside a code span, so that double blanks and a leading or
// trailing blank show; the line break of -403 is written as \r\n.
std::string TextCell(const MessageRow& row) {
  if (!row.english) return "`\"There are no contents to display in your \"` + caption + `\" account for this session.\"`";
  std::string text = Utf8Of(row.english);
  std::string shown;
  for (char c : text) {
    if (c == '\r') shown += "\\r";
    else if (c == '\n') shown += "\\n";
    else if (c == '|') shown += "\\|";
    else shown += c;
  }
  return "`\"" + shown + "\"`";
}

std::string TitleCells(int code) {
  switch (MessageTitleOf(code)) {
    case MessageTitle::kFirstCaption:
      return "caption | 1";
    case MessageTitle::kSecondCaption:
      return "caption + `\" failure\"` | 1";
    case MessageTitle::kNone:
      break;
  }
  return "none (returns 0) | -1";
}

std::string RenderTable() {
  std::ostringstream out;
  out << kBegin;
  out << "| code | text no. | English text (`W_GetMessageString`) | title (`W_GetMessageInfo`) | `msgType` |\n";
  out << "|---:|---:|---|---|---:|\n";
  for (std::size_t i = 0; i < MessageRowCount(); ++i) {
    const MessageRow& row = MessageRowAt(i);
    out << "| " << row.code << " | " << (row.text_number ? std::to_string(row.text_number) : std::string("-"))
        << " | " << TextCell(row) << " | " << TitleCells(row.code) << " |\n";
  }
  out << kEnd;
  return out.str();
}

std::string PageTable() {
  std::ifstream page(TAVRINE_RESULT_CODES_PAGE, std::ios::binary);
  std::stringstream bytes;
  bytes << page.rdbuf();
  const std::string text = bytes.str();
  const std::size_t begin = text.find(kBegin);
  const std::size_t end = text.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return "";
  return text.substr(begin, end + std::string(kEnd).size() - begin);
}

TEST(ResultCodesPage, TableIsTheMessageTableRowForRow) {
  const std::string rendered = RenderTable();
  const std::string on_page = PageTable();
  ASSERT_FALSE(on_page.empty()) << "no generated table between the markers in " << TAVRINE_RESULT_CODES_PAGE;
  if (rendered != on_page) {
    std::ofstream(TAVRINE_RESULT_CODES_RENDERED, std::ios::binary) << rendered;
    ADD_FAILURE() << TAVRINE_RESULT_CODES_PAGE << " is not the message table; the table as the code has it is in "
                  << TAVRINE_RESULT_CODES_RENDERED;
  }
}

TEST(ResultCodesPage, EveryRowOfTheMessageTableIsOnThePage) {
  const std::string on_page = PageTable();
  for (std::size_t i = 0; i < MessageRowCount(); ++i) {
    const std::string cell = "| " + std::to_string(MessageRowAt(i).code) + " |";
    EXPECT_NE(on_page.find(cell), std::string::npos) << "code " << MessageRowAt(i).code << " is missing";
  }
}

}  // namespace
}  // namespace tavrine::foundation
