#pragma once
#include <cstdint>
#include <string>

#include "browsing/records.h"
#include "browsing/remote_browser.h"

namespace tavrine::contract {

// TavrinEenum as the shell side calls it: the remote listing walked folder by
// folder, a file's versions and the account's computers. Every method traps
// what the browser throws into its "[EXCEPTION] " line and its failure value.
class TavrinEenum {
 public:
  using FindData = browsing::FindData;
  using FileVersions = browsing::FileVersions;

  std::int16_t TavrinEInit();
  void W_GetCurrentUser(std::wstring& strUserName);
  std::int32_t TavrinEFindFirstFile(const std::wstring& strFileName, FindData& wd);
  std::int32_t TavrinENextFile(FindData& wd);
  void TavrinEExitInstance();
  std::int16_t TavrinELocalRefresh();
  std::int32_t GetFirstVersion(const std::wstring& filename, FileVersions& sfirstVer);
  std::int32_t GetNextVersion(FileVersions& sfirstVer);
  std::int32_t GetFileVersion(FileVersions& filever);
  // The engine's answer (402 when the list was read), or -1.
  std::int32_t GetMultiplePCInfo();
  // The number of computers in the machine list, or -1.
  std::int32_t ReadMachineList();
  bool IsItemExists(const std::wstring& strval);

 private:
  browsing::RemoteBrowser browser_;
};

}  // namespace tavrine::contract
