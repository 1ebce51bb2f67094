#include "foundation/message_table.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "foundation/configuration.h"
#include "foundation/language_text.h"
#include "foundation/text_util.h"

namespace tavrine::foundation {

namespace {

// -412 is built around the product caption, so its English text is not here.
constexpr MessageRow kRows[] = {
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
    {-412, 1308, nullptr},
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

constexpr int kFirstCaptionCodes[] = {-415, -412};
constexpr int kSecondCaptionCodes[] = {-50,  -401, -403, -404, -405, -409, -411, -416, -417,
                                       -505, -506, -507, -508, -511, -12008, -12009, -12010};

std::wstring EnglishText(const MessageRow& row) {
  if (row.english) return row.english;
  return L"There are no contents to display in your " + LoadedConfiguration().caption +
         L" account for this session.";
}

template <std::size_t N>
bool Contains(const int (&codes)[N], int code) {
  return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

}  // namespace

const MessageRow* FindMessageRow(int code) {
  auto it = std::find_if(std::begin(kRows), std::end(kRows),
                         [code](const MessageRow& row) { return row.code == code; });
  return it == std::end(kRows) ? nullptr : &*it;
}

std::optional<std::wstring> MessageText(int code) {
  const MessageRow* row = FindMessageRow(code);
  if (!row) return std::nullopt;
  if (row->text_number != 0) {
    std::wstring localized = LanguageText(row->text_number);
    if (!Trim(localized).empty()) return localized;
  }
  return EnglishText(*row);
}

MessageTitle MessageTitleOf(int code) {
  if (Contains(kFirstCaptionCodes, code)) return MessageTitle::kFirstCaption;
  if (Contains(kSecondCaptionCodes, code)) return MessageTitle::kSecondCaption;
  return MessageTitle::kNone;
}

std::size_t MessageRowCount() { return std::size(kRows); }
const MessageRow& MessageRowAt(std::size_t index) { return kRows[index]; }

}  // namespace tavrine::foundation
