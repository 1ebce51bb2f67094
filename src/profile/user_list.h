#pragma once
#include <string>
#include <vector>

namespace tavrine::profile {

// userlist.ini beside the library: the users who have logged in on this
// computer, for the login dialog's choice. UTF-16LE with BOM (user names
// need not fit the ANSI code page), ini layout:
//   [Users]
//   Count=2
//   User1=alice
//   User2=Jürgen
// Names are unique without regard to case and pass IsSafeName; a damaged or
// hand-edited file reads as the valid names it still holds.
std::wstring UserListPath();

std::vector<std::wstring> ReadUserList();
// True when the name is in the list afterwards (already there counts); false
// for a name IsSafeName refuses or when the file cannot be written.
bool AddToUserList(const std::wstring& user);
// True when the name is not in the list afterwards.
bool RemoveFromUserList(const std::wstring& user);

}  // namespace tavrine::profile
