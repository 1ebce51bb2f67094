#include "operations/schedule_control.h"

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "platform/services.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"

namespace tavrine::operations {

namespace {

bool SetProfileValue(const std::wstring& user, const wchar_t* name, const std::wstring& value) {
  return profile::ProfileStore::ForCurrentInstallation().UpdateForUser(user, name, value);
}

std::optional<std::vector<std::wstring>> ReadFolderFile(const std::wstring& user,
                                                        const wchar_t* name) {
  std::wstring folder = ScheduleFolder(user);
  if (folder.empty()) return std::nullopt;
  std::wstring file = foundation::JoinPath(folder, name);
  if (!foundation::FileExists(file)) return std::nullopt;
  return foundation::ReadAnsiLines(file);
}

}  // namespace

std::wstring ScheduleFolder(const std::wstring& user) {
  if (user.empty() || !profile::IsSafeName(user)) return {};
  const auto& settings = foundation::LoadedConfiguration();
  if (settings.installation_name.empty()) return {};
  return foundation::ComputeWorkRoot() + settings.installation_name + user;
}

std::wstring ScheduleUser(const std::wstring& given) {
  std::wstring user = foundation::Trim(given);
  if (user.empty()) user = profile::CurrentUserName();
  if (!user.empty() && !profile::IsSafeName(user)) {
    foundation::Trace(L"Schedule control :: refused user name '" + user + L"'");
    return {};
  }
  return user;
}

std::optional<std::vector<std::wstring>> ReadScheduleData(const std::wstring& user) {
  return ReadFolderFile(user, kScheduleDataFile);
}

std::optional<std::vector<std::wstring>> ReadSchedulerStatus(const std::wstring& user) {
  return ReadFolderFile(user, kSchedulerStatusFile);
}

bool ScheduledRunActive(const std::vector<std::wstring>& schedule_data) {
  return !schedule_data.empty() && foundation::Trim(schedule_data[0]) != L"0";
}

bool WritePauseRequest(const std::wstring& user, const std::wstring& run, const std::wstring& job) {
  std::wstring folder = ScheduleFolder(user);
  if (folder.empty()) return false;
  std::wstring file = foundation::JoinPath(folder, kSchedulerStatusFile);
  foundation::DeleteFileIfExists(file);
  for (const std::wstring& line : {std::wstring(kPauseRequest), run, job}) {
    if (!foundation::AppendAnsiLine(file, line)) {
      foundation::Trace(L"StopScheduleBackup :: " + file + L" could not be written");
      return false;
    }
  }
  return true;
}

bool RemovePauseRequest(const std::wstring& user) {
  std::wstring folder = ScheduleFolder(user);
  if (folder.empty()) return false;
  std::wstring file = foundation::JoinPath(folder, kSchedulerStatusFile);
  foundation::DeleteFileIfExists(file);
  return !foundation::FileExists(file);
}

std::int32_t BlockScheduledRuns(const std::wstring& given) {
  std::wstring user = ScheduleUser(given);
  if (user.empty()) return 0;
  bool ok = SetProfileValue(user, L"UPLOAD", L"TRUE");
  ok = SetProfileValue(user, L"IsUploadStarted", L"FALSE") && ok;
  return ok ? 1 : 0;
}

std::int32_t ClearManualUploadMarks(const std::wstring& given) {
  std::wstring user = ScheduleUser(given);
  if (user.empty()) return 0;
  // "FASLE" is the value the scheduler has always been given.
  bool ok = SetProfileValue(user, L"UPLOAD", L"FASLE");
  ok = SetProfileValue(user, L"IsUploadStarted", L"FALSE") && ok;
  ok = SetProfileValue(user, L"CLASSIC_SESSION", L"FALSE") && ok;
  return ok ? 1 : 0;
}

std::int32_t RequestSchedulePause(const std::wstring& given) {
  std::wstring user = ScheduleUser(given);
  auto data = ReadScheduleData(user);
  if (!data || !ScheduledRunActive(*data)) return 0;
  std::wstring job = data->size() > 1 ? (*data)[1] : std::wstring();
  if (!WritePauseRequest(user, (*data)[0], job)) return 0;
  // Gives the scheduler its polling interval to see the request.
  platform::CurrentClock().Sleep(1000);
  return 1;
}

bool ScheduledBackupRunning(const std::wstring& given) {
  auto data = ReadScheduleData(ScheduleUser(given));
  return data && ScheduledRunActive(*data);
}

std::int32_t ResumeSchedule(const std::wstring& given) {
  std::wstring user = ScheduleUser(given);
  if (user.empty()) return 0;
  // Profile first: the scheduler resumes when the request file is gone
  // and must then find no manual upload recorded.
  std::int32_t cleared = ClearManualUploadMarks(user);
  bool removed = RemovePauseRequest(user);
  return cleared == 1 && removed ? 1 : 0;
}

}  // namespace tavrine::operations
