#pragma once
#include <cstdint>
#include <string>

namespace tavrine::operations {

// A manual backup of the items the user dropped on the remote view: the
// compare step (listing, then TavrinECompareList), then the upload through
// API_ENTRY; the scheduled backup is paused from DoBackupInit until
// W_BackupExitInstance, or until the backup is cancelled or fails
// (docs/schedule-protocol.md). 401 means cancelled by the user, -1 no result.
class CBackup {
 public:
  std::int32_t W_BackupInit(std::int32_t lHandle, const std::wstring& strTempPath);
  std::int32_t DoBackupInit(std::int32_t lHandle, const std::wstring& strTempPath);
  // Starts the upload engine. Returns 1 when it runs, 401 when cancelled, -1
  // when it could not be started; lResult gets API_ENTRY's completion flag.
  std::int32_t W_DoBackup(std::int32_t& lResult);
  std::int32_t W_BackupExitInstance();
  // The schedule controls return 1 when done, 0 when there was nothing to do
  // or it could not be done. An empty user means the current user.
  std::int32_t DisableScheduleBackup(const std::wstring& sCurrentUser);
  std::int32_t ResetConfigurations(const std::wstring& sCurrentUser);
  std::int32_t StopScheduleBackup(const std::wstring& sCurrentUser);
  bool IsScheduleBackupRunning(const std::wstring& sCurrentUser);
  // The compare step; DLLOutput1.txt's first line (1: items to upload,
  // 0: nothing new, negative: failure), 401 or the listing's failure.
  std::int32_t BackupInit();
  bool IsBackupCancelled();
  std::int32_t EnableScheduleBackup(const std::wstring& sCurrentUser);

 private:
  // Pauses a running scheduled backup and blocks new ones.
  void PrepareBackup();
  std::int32_t RunCompare();
  std::wstring CurrentUser() const;

  std::wstring temp_path_;
  std::int32_t handle_ = 0;
  std::wstring user_;
};

// The value of DLLOutput1.txt after a compare that found items to upload.
inline constexpr std::int32_t kCompareFoundItems = 1;

}  // namespace tavrine::operations
