#include "operations/c_backup.h"

#include <fstream>
#include <optional>
#include <vector>

#include "engine/engine_run.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "operations/schedule_control.h"
#include "platform/module_folder.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/profile_store.h"

namespace tavrine::operations {

namespace {

using foundation::DeleteFileIfExists;
using foundation::FileExists;
using foundation::JoinPath;

constexpr std::int32_t kCancelled = 401;
constexpr const wchar_t* kCompareProgram = L"TavrinECompareList.exe";
constexpr const wchar_t* kCompareFiles[] = {L"DLLInput.txt",      L"DLLOutput1.txt",
                                            L"DLLOutput.txt",     L"DLLOutputInfo.txt",
                                            L"notToBackup.txt",   L"ToBackup.txt"};

void TraceFailure(const wchar_t* method) {
  foundation::TraceException(method, foundation::DescribeCurrentException());
}

// InputList.txt is the shell side's: UTF-16 when it starts with a byte-order
// mark, ANSI otherwise.
std::optional<std::vector<std::wstring>> ReadInputList(const std::wstring& file) {
  std::ifstream in(platform::ToFsPath(file), std::ios::binary);
  char bom[2] = {};
  bool utf16 = in.read(bom, 2) && bom[0] == '\xFF' && bom[1] == '\xFE';
  in.close();
  return utf16 ? foundation::ReadUtf16Lines(file) : foundation::ReadAnsiLines(file);
}

bool EndsWithSeparator(const std::wstring& path) {
  return !path.empty() && (path.back() == L'\\' || path.back() == platform::kPathSeparator);
}

// Two request lines per input line, blank ones included, so the compare
// program sees the list line for line: the path and "0" for a file; the
// path without its trailing separator and "1" for a folder.
std::vector<std::wstring> CompareRequest(const std::vector<std::wstring>& items) {
  std::vector<std::wstring> lines;
  lines.reserve(items.size() * 2);
  for (const std::wstring& item : items) {
    if (EndsWithSeparator(item)) {
      lines.insert(lines.end(), {item.substr(0, item.size() - 1), L"1"});
    } else {
      lines.insert(lines.end(), {item, L"0"});
    }
  }
  return lines;
}

bool SetProfileValue(const std::wstring& user, const wchar_t* name, const std::wstring& value) {
  return profile::ProfileStore::ForCurrentInstallation().UpdateForUser(user, name, value);
}

}  // namespace

std::wstring CBackup::CurrentUser() const {
  return user_.empty() ? profile::CurrentUserName() : user_;
}

std::int32_t CBackup::W_BackupInit(std::int32_t lHandle, const std::wstring& strTempPath) {
  try {
    return DoBackupInit(lHandle, strTempPath);
  } catch (...) {
    TraceFailure(L"W_BackupInit");
    return -1;
  }
}

std::int32_t CBackup::DoBackupInit(std::int32_t lHandle, const std::wstring& strTempPath) {
  bool paused = false;
  try {
    handle_ = lHandle;
    temp_path_ = strTempPath;
    if (temp_path_.empty() || !foundation::FolderExists(temp_path_)) {
      foundation::Trace(L"DoBackupInit :: no exchange folder '" + temp_path_ + L"'");
      return -1;
    }
    if (IsBackupCancelled()) return kCancelled;
    PrepareBackup();
    paused = true;
    std::int32_t result = IsBackupCancelled() ? kCancelled : BackupInit();
    // Only a compare that found items leads to an upload; anything else
    // ends the manual backup here, so the schedule runs again.
    if (result != kCompareFoundItems) EnableScheduleBackup(CurrentUser());
    return result;
  } catch (...) {
    TraceFailure(L"DoBackupInit");
    if (paused) EnableScheduleBackup(CurrentUser());
    return -1;
  }
}

void CBackup::PrepareBackup() {
  user_ = engine::Session::Open().current_user();
  // A pause still in place (a backup that never reached its exit) is kept.
  if (auto status = ReadSchedulerStatus(user_); status && !status->empty()) {
    DisableScheduleBackup(user_);
  }
  StopScheduleBackup(user_);
  platform::CurrentClock().Sleep(2000);
  DisableScheduleBackup(user_);
}

std::int32_t CBackup::W_DoBackup(std::int32_t& lResult) {
  std::wstring user;
  bool started = false;
  try {
    foundation::LoadConfigurations();
    user = CurrentUser();
    profile::ProfileStore store = profile::ProfileStore::ForCurrentInstallation();
    if (IsBackupCancelled()) {
      EnableScheduleBackup(user);
      return kCancelled;
    }
    engine::Session session = engine::Session::Open();
    EntryStart entry = StartSessionEntry(session, temp_path_);
    std::int32_t process = entry.handle;
    lResult = entry.completed ? 1 : 0;
    if (process == -1) {
      foundation::Trace(L"W_DoBackup :: the upload could not be started");
      EnableScheduleBackup(user);
      return -1;
    }
    started = true;
    store.UpdateForUser(user, L"IsUploadStarted", L"TRUE");
    store.UpdateForUser(user, L"TavrinEClientPID", std::to_wstring(process));
    // The engine watches the same marker and stops by itself.
    if (IsBackupCancelled()) {
      EnableScheduleBackup(user);
      return kCancelled;
    }
    return 1;
  } catch (...) {
    TraceFailure(L"W_DoBackup");
    if (!user.empty() && !started) EnableScheduleBackup(user);
    return -1;
  }
}

std::int32_t CBackup::W_BackupExitInstance() {
  try {
    foundation::LoadConfigurations();
    return EnableScheduleBackup(CurrentUser());
  } catch (...) {
    TraceFailure(L"W_BackupExitInstance");
    return -1;
  }
}

std::int32_t CBackup::DisableScheduleBackup(const std::wstring& sCurrentUser) {
  try {
    foundation::LoadConfigurations();
    std::wstring user = ScheduleUser(sCurrentUser);
    if (user.empty()) return 0;
    bool ok = SetProfileValue(user, L"UPLOAD", L"TRUE");
    ok = SetProfileValue(user, L"IsUploadStarted", L"FALSE") && ok;
    return ok ? 1 : 0;
  } catch (...) {
    TraceFailure(L"DisableScheduleBackup");
    return 0;
  }
}

std::int32_t CBackup::ResetConfigurations(const std::wstring& sCurrentUser) {
  try {
    foundation::LoadConfigurations();
    std::wstring user = ScheduleUser(sCurrentUser);
    if (user.empty()) return 0;
    // "FASLE" is the value the scheduler has always been given.
    bool ok = SetProfileValue(user, L"UPLOAD", L"FASLE");
    ok = SetProfileValue(user, L"IsUploadStarted", L"FALSE") && ok;
    ok = SetProfileValue(user, L"CLASSIC_SESSION", L"FALSE") && ok;
    return ok ? 1 : 0;
  } catch (...) {
    TraceFailure(L"ResetConfigurations");
    return 0;
  }
}

std::int32_t CBackup::StopScheduleBackup(const std::wstring& sCurrentUser) {
  try {
    foundation::LoadConfigurations();
    std::wstring user = ScheduleUser(sCurrentUser);
    auto data = ReadScheduleData(user);
    if (!data || !ScheduledRunActive(*data)) return 0;
    std::wstring job = data->size() > 1 ? (*data)[1] : std::wstring();
    if (!WritePauseRequest(user, (*data)[0], job)) return 0;
    // Gives the scheduler its polling interval to see the request.
    platform::CurrentClock().Sleep(1000);
    return 1;
  } catch (...) {
    TraceFailure(L"StopScheduleBackup");
    return 0;
  }
}

bool CBackup::IsScheduleBackupRunning(const std::wstring& sCurrentUser) {
  try {
    foundation::LoadConfigurations();
    auto data = ReadScheduleData(ScheduleUser(sCurrentUser));
    return data && ScheduledRunActive(*data);
  } catch (...) {
    TraceFailure(L"IsScheduleBackupRunning");
    return false;
  }
}

std::int32_t CBackup::EnableScheduleBackup(const std::wstring& sCurrentUser) {
  try {
    foundation::LoadConfigurations();
    std::wstring user = ScheduleUser(sCurrentUser);
    if (user.empty()) return 0;
    // Profile first: the scheduler resumes when the request file is gone
    // and must then find no manual upload recorded.
    std::int32_t reset = ResetConfigurations(user);
    bool removed = RemovePauseRequest(user);
    return reset == 1 && removed ? 1 : 0;
  } catch (...) {
    TraceFailure(L"EnableScheduleBackup");
    return 0;
  }
}

bool CBackup::IsBackupCancelled() {
  try {
    return !temp_path_.empty() && FileExists(JoinPath(temp_path_, L"cancel.txt"));
  } catch (...) {
    TraceFailure(L"IsBackupCancelled");
    return false;
  }
}

std::int32_t CBackup::BackupInit() {
  try {
    if (temp_path_.empty()) {
      foundation::Trace(L"BackupInit :: no exchange folder");
      return -1;
    }
    if (IsBackupCancelled()) return kCancelled;
    engine::Session session = engine::Session::Open();
    std::int32_t listing = ListRemote(session, temp_path_);
    if (IsBackupCancelled()) return kCancelled;
    if (listing != 402 && listing != -412) return listing;

    for (const wchar_t* name : kCompareFiles) DeleteFileIfExists(JoinPath(temp_path_, name));
    DeleteFileIfExists(
        JoinPath(JoinPath(platform::ModuleFolder(), L"Log"), L"CompareListTrace.txt"));

    const std::wstring input_list = JoinPath(temp_path_, L"InputList.txt");
    if (!FileExists(input_list)) return -1;
    auto items = ReadInputList(input_list);
    if (!items) {
      foundation::Trace(L"BackupInit :: InputList.txt could not be read");
      return -1;
    }
    if (!foundation::WriteUtf16Lines(JoinPath(temp_path_, L"DLLInput.txt"),
                                     CompareRequest(*items))) {
      foundation::Trace(L"BackupInit :: the compare request could not be written");
      return -1;
    }
    if (IsBackupCancelled()) return kCancelled;
    return RunCompare();
  } catch (...) {
    TraceFailure(L"BackupInit");
    return -1;
  }
}

std::int32_t CBackup::RunCompare() {
  const std::wstring program = engine::EngineProgramPath(kCompareProgram);
  const std::wstring parameters = L"<" + temp_path_ + L">" + L"<1>";
  auto process =
      platform::CurrentLauncher().Start(program, parameters, platform::ModuleFolder());
  if (!process) {
    foundation::Trace(L"BackupInit :: compare program could not be started: " + program);
    return -1;
  }
  engine::RunEnd end =
      engine::WaitCancellable(process.get(), JoinPath(temp_path_, L"cancel.txt"));
  if (end == engine::RunEnd::kCancelled) return kCancelled;
  if (end != engine::RunEnd::kExited) return -1;

  auto lines = foundation::ReadAnsiLines(JoinPath(temp_path_, L"DLLOutput1.txt"));
  if (!lines || lines->empty()) {
    foundation::Trace(L"BackupInit :: the compare program left no result");
    return -1;
  }
  auto value = foundation::ParseNumber((*lines)[0]);
  if (!value) {
    foundation::Trace(L"BackupInit :: compare result is not a number: " + (*lines)[0]);
    return -1;
  }
  return foundation::RoundToInt32(*value);
}

}  // namespace tavrine::operations
