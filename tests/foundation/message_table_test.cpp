// Every row of the message table against a table written out on its own
// from the system's texts: a typo in any one row fails here.
#include "foundation/message_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "contract/ui_commands.h"
#include "support/install_folder.h"

namespace tavrine::foundation {
namespace {

using contract::UICommands;
using testing::InstallFolder;

struct ExpectedRow {
  int code;
  int text_number;  // 0: never localized
  const wchar_t* english;
};

constexpr ExpectedRow kExpectedRows[] = {
    {-32766, 1330, L"Login cancelled"},
    {-12010, 1328, L"Proxy address / port failure / proxy not enabled"},
    {-12009, 1325, L"Proxy Username/Password failure"},
    {-12008, 1327, L"Proxy server requires an username and password"},
    {-1002, 1331,
     L"The path selected exceeds the prescribed number of characters. Select a different "
     L"destination directory."},
    {-1001, 1332,
     L"The folder you have selected is read/write protected. Please choose other "
     L"drive\\directory."},
    {-624, 0, L"File creation failed in server "},
    {-623, 0, L"Error while sending tarnsfer command"},
    {-622, 0, L"Error while sending non matching block"},
    {-621, 0, L"Error while sending file block structure"},
    {-620, 0, L"Error while sending buffer length"},
    {-619, 0, L"Error while sending restart command"},
    {-618, 0, L"Error while reading file information"},
    {-617, 0, L"Error while sending backup set"},
    {-616, 0, L"Error while sending file path"},
    {-615, 0, L"Error while sending file length"},
    {-614, 0, L"Error while sending non matching block"},
    {-613, 0, L"Error while sending matching block"},
    {-612, 0, L"Error while sending non matching block structure"},
    {-611, 0, L"Error while sending matching block structure"},
    {-610, 0, L"Error while reading checksum"},
    {-609, 0, L"Error while sending file count"},
    {-608, 0, L"Error while sending block transfer command"},
    {-607, 0, L"Error while sending non matching structure"},
    {-606, 0, L"Error while sending  file block info"},
    {-605, 0, L"Error while sending file read error"},
    {-604, 0, L"Error while sending file header info"},
    {-603, 0, L"Error reading file status"},
    {-602, 0, L"File open error"},
    {-601, 0, L"File property read error"},
    {-600, 0, L"Create path failed"},
    {-511, 0, L"Cleanup is in progress"},
    {-510, 1297, L"Machine registration failure"},
    {-509, 495, L"The server is under maintanance"},
    {-508, 1323, L"User variable error"},
    {-507, 1322, L"Your account has been cancelled"},
    {-506, 1321, L"Your account is not activated"},
    {-505, 1320, L"Machine not registered"},
    {-504, 1319, L"Network failure"},
    {-426, 1318, L"Files/folders excluded from backup"},
    {-425, 1317, L"Backup stopped. Try once again"},
    {-424, 1316, L"Operation cancelled by the user"},
    {-423, 1315, L"File  to be deleted not available on the server"},
    {-422, 0, L"Enhanced crypt not supported"},
    {-421, 1314, L"Unable to process the request. Please try after some times"},
    {-420, 0, L"Error in reading Restart Stauts"},
    {-419, 0, L"Error in backup Status"},
    {-418, 1313, L"Backup set not changed"},
    {-417, 0, L"Restore cancelled"},
    {-416, 1312, L"Could not establish connection with server. Please try again later"},
    {-415, 1311, L"Database error in server"},
    {-414, 1310, L"Backup cancelled by the user"},
    {-413, 1309, L"Failed to open backup set file"},
    {-412, 1308,
     L"There are no contents to display in your TavrinE Online Backup account for this "
     L"session."},
    {-411, 1307, L"Cannot send the Backup file id"},
    {-410, 1306,
     L"Scheduled backup or upload job belonging to the same account is currently under "
     L"progress"},
    {-409, 1305, L"Empty folder selected for backup"},
    {-408, 1304, L"Unable to get files from server"},
    {-407, 1303, L"Incorrect encryption password"},
    {-406, 1302, L"No free space found on the selected drive"},
    {-405, 1301, L" Network failure"},
    {-404, 1300, L"Incorrect encryption password"},
    {-403, 1299,
     L"Login failed. Reason: The requested operation has failed due to change of password in "
     L"the website.\r\nPlease log out and log in with the new password to continue the "
     L"operation."},
    {-401, 1298, L"Invalid  username"},
    {-50, 1333, L"Username does not exist."},
    {401, 1294, L"Backup cancelled by  the user"},
    {402, 1295, L"Authentication  successful"},
    {403, 1296, L"Operation  successful"},
    {404, 1297, L"Machine registration successful"},
    {12000, 0, L"SSL initialization failed"},
    {12001, 0, L"SSL could not locate root certificate"},
    {12002, 0, L"SSL could not load root certificate"},
    {12003, 0, L"Generic SSL error"},
    {12004, 0, L"Couldnot create SSL context"},
    {12006, 0, L"Proxy does not suppport SOCKS 5"},
    {12007, 1326, L"Proxy requires an authentication method not supported"},
};

std::wstring MessageString(int code) {
  std::wstring text = L"untouched";
  UICommands().W_GetMessageString(code, text);
  return text;
}

TEST(MessageRows, EveryCodeHasExactlyItsEnglishText) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  std::set<int> codes;
  for (const auto& row : kExpectedRows) {
    EXPECT_TRUE(codes.insert(row.code).second) << row.code;
    EXPECT_EQ(MessageString(row.code), row.english) << row.code;
  }
  EXPECT_EQ(codes.size(), 76u);
  EXPECT_EQ(MessageRowCount(), codes.size());
  for (std::size_t i = 0; i < MessageRowCount(); ++i)
    EXPECT_TRUE(codes.count(MessageRowAt(i).code)) << MessageRowAt(i).code;
}

// Each number is given its own localized text; a row shows the text of its
// number, and keeps its English text when it has none (number 0 is never
// looked up) or the language's is blank (1312).
TEST(MessageRows, EveryCodeLooksUpItsOwnTextNumber) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  std::string strings = "[Strings]\r\n0=zero\r\n";
  for (const auto& row : kExpectedRows) {
    if (row.text_number == 1312) strings += "1312=   \r\n";
    else if (row.text_number != 0)
      strings += std::to_string(row.text_number) + "=text " + std::to_string(row.text_number) + "\r\n";
  }
  testing::WriteFileBytes(install.path() / "Lang" / "English.ini", strings);
  for (const auto& row : kExpectedRows) {
    const bool localized = row.text_number != 0 && row.text_number != 1312;
    const std::wstring expected =
        localized ? L"text " + std::to_wstring(row.text_number) : std::wstring(row.english);
    EXPECT_EQ(MessageString(row.code), expected) << row.code;
  }
}

// Codes without a row leave the text alone.
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
