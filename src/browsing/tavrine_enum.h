#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "browsing/file_history.h"
#include "browsing/records.h"
#include "browsing/remote_tree.h"

namespace tavrine::browsing {

// Lists the remote backup folder by folder for the shell side, in the manner
// of a find-first / find-next search, plus a file's versions and the
// computers of the account.
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
  std::shared_ptr<const RemoteListing> tree_;
  EnumCursor cursor_;
  std::wstring user_name_;
  CTavrinEFileHistory history_;
};

}  // namespace tavrine::browsing
