#include "foundation/message_table.h"

#include <gtest/gtest.h>

#include "contract/ui_commands.h"
#include "support/install_folder.h"

namespace tavrine::foundation {
namespace {

using contract::UICommands;
using testing::InstallFolder;

// Codes without a row leave the text alone (every row is checked in
// message_rows_test.cpp).
TEST(MessageTable, CodesWithoutARowLeaveTheTextAlone) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  UICommands commands;
  for (int code : {-402, 12005, 0, 400, -399, -32767, 12008}) {
    std::wstring text = L"untouched";
    EXPECT_EQ(commands.W_GetMessageString(code, text), 0) << code;
    EXPECT_EQ(text, L"untouched") << code;
  }
}

// Rows without a text number (-511) never look the language up.
TEST(MessageTable, LocalizedTextWinsUnlessBlank) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  testing::WriteFileBytes(install.path() / "Lang" / "English.ini",
                          "[Strings]\r\n1319=Netzwerkfehler\r\n1312=   \r\n495=Wartung\r\n"
                          "0=zero\r\n");
  const auto text = [](int code) {
    std::wstring result;
    UICommands().W_GetMessageString(code, result);
    return result;
  };
  EXPECT_EQ(text(-504), L"Netzwerkfehler");
  EXPECT_EQ(text(-416), L"Could not establish connection with server. Please try again later");
  EXPECT_EQ(text(-509), L"Wartung");
  EXPECT_EQ(text(-511), L"Cleanup is in progress");
}

TEST(MessageInfo, TitlesFollowTheTitleTable) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  UICommands commands;
  struct Case {
    int code;
    long result;
    const wchar_t* title;
    short type;
  } cases[] = {
      {-415, 1, L"TavrinE Online Backup", 1},
      {-412, 1, L"TavrinE Online Backup", 1},
      {-12009, 1, L"TavrinE Online Backup failure", 1},
      {-50, 1, L"TavrinE Online Backup failure", 1},
      {-504, 0, L"", -1},
      {12345, 0, L"", -1},
  };
  for (const auto& c : cases) {
    std::wstring title = L"poison";
    short type = 77;
    EXPECT_EQ(commands.W_GetMessageInfo(c.code, title, type), c.result) << c.code;
    EXPECT_EQ(title, c.title) << c.code;
    EXPECT_EQ(type, c.type) << c.code;
  }
}

}  // namespace
}  // namespace tavrine::foundation
