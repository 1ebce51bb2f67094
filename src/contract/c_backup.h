#pragma once
#include <cstdint>
#include <string>

#include "operations/manual_backup.h"

namespace tavrine::contract {

// CBackup as the shell side calls it: a manual backup (compare, then upload)
// and the controls of the scheduled backup. 401 means cancelled by the user,
// -1 no result.
class CBackup {
 public:
  std::int32_t W_BackupInit(std::int32_t lHandle, const std::wstring& strTempPath);
  std::int32_t DoBackupInit(std::int32_t lHandle, const std::wstring& strTempPath);
  // Starts the upload engine. Returns 1 when it runs, 401 when cancelled, -1
  // when it could not be started; lResult gets the engine call's completion flag.
  std::int32_t W_DoBackup(std::int32_t& lResult);
  std::int32_t W_BackupExitInstance();
  // The schedule controls return 1 when done, 0 when there was nothing to do
  // or it could not be done. An empty user means the current user.
  std::int32_t DisableScheduleBackup(const std::wstring& sCurrentUser);
  std::int32_t ResetConfigurations(const std::wstring& sCurrentUser);
  std::int32_t StopScheduleBackup(const std::wstring& sCurrentUser);
  bool IsScheduleBackupRunning(const std::wstring& sCurrentUser);
  std::int32_t BackupInit();
  bool IsBackupCancelled();
  std::int32_t EnableScheduleBackup(const std::wstring& sCurrentUser);

 private:
  operations::ManualBackup backup_;
};

}  // namespace tavrine::contract
