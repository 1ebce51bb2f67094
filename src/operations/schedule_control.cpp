#include "operations/schedule_control.h"

#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"

namespace tavrine::operations {

namespace {

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
  const auto& settings = foundation::CurrentSettings();
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

}  // namespace tavrine::operations
