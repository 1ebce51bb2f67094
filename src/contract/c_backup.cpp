#include "contract/c_backup.h"

#include "contract/failure_boundary.h"
#include "engine/session.h"
#include "operations/schedule_control.h"

namespace tavrine::contract {

namespace {

// The schedule calls read the installation name this thread loaded; each
// call loads the configuration first, as a backup step does.
void LoadConfiguration() { engine::Session::OpenConfiguration(); }

}  // namespace

// W_BackupInit is DoBackupInit under its older name; its failures have
// always been traced under the newer one.
std::int32_t CBackup::W_BackupInit(std::int32_t lHandle, const std::wstring& strTempPath) try {
  return backup_.Prepare(lHandle, strTempPath);
} TAVRINE_CATCH_RETURN(L"DoBackupInit", -1)

std::int32_t CBackup::DoBackupInit(std::int32_t lHandle, const std::wstring& strTempPath) try {
  return backup_.Prepare(lHandle, strTempPath);
} TAVRINE_CATCH_RETURN(L"DoBackupInit", -1)

std::int32_t CBackup::W_DoBackup(std::int32_t& lResult) try {
  const operations::ManualBackup::UploadStart start = backup_.StartUpload();
  if (start.completed) lResult = *start.completed;
  return start.result;
} TAVRINE_CATCH_RETURN(L"W_DoBackup", -1)

std::int32_t CBackup::W_BackupExitInstance() try {
  return backup_.Finish();
} TAVRINE_CATCH_RETURN(L"W_BackupExitInstance", -1)

std::int32_t CBackup::DisableScheduleBackup(const std::wstring& sCurrentUser) try {
  LoadConfiguration();
  return operations::BlockScheduledRuns(sCurrentUser);
} TAVRINE_CATCH_RETURN(L"DisableScheduleBackup", 0)

std::int32_t CBackup::ResetConfigurations(const std::wstring& sCurrentUser) try {
  LoadConfiguration();
  return operations::ClearManualUploadMarks(sCurrentUser);
} TAVRINE_CATCH_RETURN(L"ResetConfigurations", 0)

std::int32_t CBackup::StopScheduleBackup(const std::wstring& sCurrentUser) try {
  LoadConfiguration();
  return operations::RequestSchedulePause(sCurrentUser);
} TAVRINE_CATCH_RETURN(L"StopScheduleBackup", 0)

bool CBackup::IsScheduleBackupRunning(const std::wstring& sCurrentUser) try {
  LoadConfiguration();
  return operations::ScheduledBackupRunning(sCurrentUser);
} TAVRINE_CATCH_RETURN(L"IsScheduleBackupRunning", false)

std::int32_t CBackup::BackupInit() try {
  return backup_.Compare();
} TAVRINE_CATCH_RETURN(L"BackupInit", -1)

bool CBackup::IsBackupCancelled() try {
  return backup_.Cancelled();
} TAVRINE_CATCH_RETURN(L"IsBackupCancelled", false)

std::int32_t CBackup::EnableScheduleBackup(const std::wstring& sCurrentUser) try {
  LoadConfiguration();
  return operations::ResumeSchedule(sCurrentUser);
} TAVRINE_CATCH_RETURN(L"EnableScheduleBackup", 0)

}  // namespace tavrine::contract
