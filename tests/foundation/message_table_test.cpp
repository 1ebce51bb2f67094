#include "foundation/message_table.h"

#include <gtest/gtest.h>

#include <set>

#include "operations/ui_commands.h"
#include "support/install_folder.h"

namespace tavrine::foundation {
namespace {

using operations::UICommands;
using testing::InstallFolder;

TEST(MessageTable, TextsStandAsTheSystemWritesThemOneRowACode) {
  std::set<int> codes;
  for (std::size_t i = 0; i < MessageRowCount(); ++i) {
    EXPECT_TRUE(codes.insert(MessageRowAt(i).code).second) << MessageRowAt(i).code;
  }
  EXPECT_EQ(MessageRowCount(), 76u);
  InstallFolder install;
  install.WriteStandardConfiguration();
  struct Case {
    int code;
    const wchar_t* text;  // nullptr: no row, the text is left as it was
  } cases[] = {
      {-402, nullptr}, {12005, nullptr}, {0, nullptr}, {400, nullptr}, {-399, nullptr},
      {-405, L" Network failure"},
      {-504, L"Network failure"},
      {-401, L"Invalid  username"},
      {-606, L"Error while sending  file block info"},
      {-624, L"File creation failed in server "},
      {-1001, L"The folder you have selected is read/write protected. Please choose other "
              L"drive\\directory."},
      {-403, L"Login failed. Reason: The requested operation has failed due to change of "
             L"password in the website.\r\nPlease log out and log in with the new password to "
             L"continue the operation."},
      {401, L"Backup cancelled by  the user"},
      {12006, L"Proxy does not suppport SOCKS 5"},
      {-412, L"There are no contents to display in your TavrinE Online Backup account for this "
             L"session."},
  };
  UICommands commands;
  for (const auto& c : cases) {
    std::wstring text = L"untouched";
    EXPECT_EQ(commands.W_GetMessageString(c.code, text), c.text ? 1 : 0) << c.code;
    EXPECT_EQ(text, c.text ? c.text : L"untouched") << c.code;
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
