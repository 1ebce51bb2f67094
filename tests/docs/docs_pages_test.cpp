// The integrator's guide against the code, so that the pages cannot drift
// from it: the result-code table is rendered from the message table and
// compared with the page (on a mismatch the rendering is written beside the
// test for pasting); the class reference lists every method of the interface
// definition with its vtable slot and DISPID.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "foundation/message_table.h"
#include "platform/path.h"

namespace tavrine::foundation {
namespace {

std::string ReadFile(const char* path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

constexpr const char* kBegin = "<!-- table generated from the message table: begin -->\n";
constexpr const char* kEnd = "<!-- table generated from the message table: end -->\n";

// The text inside a code span, so that double blanks and a leading or
// trailing blank show; the line break of -403 is written as \r\n.
std::string TextCell(const MessageRow& row) {
  if (!row.english) return "`\"There are no contents to display in your \"` + caption + `\" account for this session.\"`";
  std::string text = platform::WideToUtf8(row.english);
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
  const std::string text = ReadFile(TAVRINE_RESULT_CODES_PAGE);
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

TEST(ClassReferencePage, EveryMethodIsListedWithItsSlotAndDispid) {
  const std::string idl = ReadFile(TAVRINE_IDL);
  const std::string page = ReadFile(TAVRINE_CLASS_REFERENCE_PAGE);
  ASSERT_FALSE(idl.empty()) << TAVRINE_IDL;
  ASSERT_FALSE(page.empty()) << TAVRINE_CLASS_REFERENCE_PAGE;
  const std::regex interface_block(R"(interface (_\w+) : IDispatch \{([^}]*)\})");
  const std::regex method(R"(\[id\((0x[0-9A-Fa-f]+)\)\]\s*HRESULT\s+(\w+)\()");
  int interfaces = 0, methods = 0;
  for (auto block = std::sregex_iterator(idl.begin(), idl.end(), interface_block); block != std::sregex_iterator();
       ++block) {
    ++interfaces;
    const std::string name = (*block)[1];
    const std::string body = (*block)[2];
    EXPECT_NE(page.find("## `" + name.substr(1) + "`"), std::string::npos) << "no section for " << name;
    int slot = 7;  // after IUnknown and IDispatch
    for (auto m = std::sregex_iterator(body.begin(), body.end(), method); m != std::sregex_iterator(); ++m, ++slot) {
      ++methods;
      const std::string row = "| " + std::to_string(slot) + " | " + (*m)[1].str() + " | `" + (*m)[2].str() + "` |";
      EXPECT_NE(page.find(row), std::string::npos) << name << ": no row starting " << row;
    }
  }
  EXPECT_EQ(interfaces, 6);
  EXPECT_EQ(methods, 66);
}

}  // namespace
}  // namespace tavrine::foundation
