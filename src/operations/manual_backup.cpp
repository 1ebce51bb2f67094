#include "operations/manual_backup.h"

#include <fstream>
#include <optional>
#include <vector>

#include "engine/engine_codes.h"
#include "engine/engine_run.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
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

// 401 answers a backup cancelled by the user, as the engine does.
constexpr std::int32_t kCancelled = engine::Raw(engine::EngineCode::kRenewalRefused);
constexpr const wchar_t* kCompareProgram = L"TavrinECompareList.exe";
constexpr const wchar_t* kCompareFiles[] = {L"DLLInput.txt",      L"DLLOutput1.txt",
                                            L"DLLOutput.txt",     L"DLLOutputInfo.txt",
                                            L"notToBackup.txt",   L"ToBackup.txt"};

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

}  // namespace

std::wstring ManualBackup::User() const {
  return user_.empty() ? profile::CurrentUserName() : user_;
}

std::int32_t ManualBackup::Prepare(std::int32_t handle, const std::wstring& exchange_folder) {
  bool paused = false;
  try {
    handle_ = handle;
    exchange_folder_ = exchange_folder;
    if (exchange_folder_.empty() || !foundation::FolderExists(exchange_folder_)) {
      foundation::Trace(L"DoBackupInit :: no exchange folder '" + exchange_folder_ + L"'");
      return -1;
    }
    if (Cancelled()) return kCancelled;
    // Set first: a failure halfway through the pause must undo its first half too.
    paused = true;
    PauseSchedule();
    std::int32_t result = Cancelled() ? kCancelled : Compare();
    // Only a compare that found items leads to an upload; anything else
    // ends the manual backup here, so the schedule runs again.
    if (result != kCompareFoundItems) Unpause();
    return result;
  } catch (...) {
    // A failed backup must not leave the schedule paused.
    if (paused) Unpause();
    throw;
  }
}

void ManualBackup::PauseSchedule() {
  user_ = engine::Session::Open().current_user();
  // A pause still in place (a backup that never reached its exit) is kept.
  if (auto status = ReadSchedulerStatus(user_); status && !status->empty()) {
    BlockScheduledRuns(user_);
  }
  RequestSchedulePause(user_);
  platform::CurrentClock().Sleep(2000);
  BlockScheduledRuns(user_);
}

ManualBackup::UploadStart ManualBackup::StartUpload() {
  UploadStart start;
  std::wstring user;
  bool started = false;
  try {
    engine::Session::OpenConfiguration();
    user = User();
    profile::ProfileStore store = profile::ProfileStore::ForCurrentInstallation();
    if (Cancelled()) {
      ResumeSchedule(user);
      start.result = kCancelled;
      return start;
    }
    engine::Session session = engine::Session::Open();
    const EntryStart entry = StartSessionEntry(session, exchange_folder_);
    const std::int32_t process = entry.handle;
    start.completed = entry.completed ? 1 : 0;
    if (process == -1) {
      foundation::Trace(L"W_DoBackup :: the upload could not be started");
      ResumeSchedule(user);
      return start;
    }
    started = true;
    store.UpdateForUser(user, L"IsUploadStarted", L"TRUE");
    store.UpdateForUser(user, L"TavrinEClientPID", std::to_wstring(process));
    // The engine watches the same marker and stops by itself.
    if (Cancelled()) {
      ResumeSchedule(user);
      start.result = kCancelled;
      return start;
    }
    start.result = 1;
    return start;
  } catch (...) {
    // An upload that never started must not leave the schedule paused; a
    // running one resumes it at its exit.
    if (!user.empty() && !started) ResumeSchedule(user);
    throw;
  }
}

std::int32_t ManualBackup::Finish() {
  engine::Session::OpenConfiguration();
  return Unpause();
}

// The user is read before the load, as the schedule call itself always did.
std::int32_t ManualBackup::Unpause() {
  const std::wstring user = User();
  engine::Session::OpenConfiguration();
  return ResumeSchedule(user);
}

bool ManualBackup::Cancelled() const {
  return !exchange_folder_.empty() && FileExists(JoinPath(exchange_folder_, L"cancel.txt"));
}

std::int32_t ManualBackup::Compare() {
  if (exchange_folder_.empty()) {
    foundation::Trace(L"BackupInit :: no exchange folder");
    return -1;
  }
  if (Cancelled()) return kCancelled;
  engine::Session session = engine::Session::Open();
  std::int32_t listing = ListRemote(session, exchange_folder_);
  if (Cancelled()) return kCancelled;
  if (listing != engine::EngineCode::kSuccessWithData && listing != engine::EngineCode::kNothingToShow)
    return listing;

  for (const wchar_t* name : kCompareFiles) DeleteFileIfExists(JoinPath(exchange_folder_, name));
  DeleteFileIfExists(
      JoinPath(JoinPath(platform::ModuleFolder(), L"Log"), L"CompareListTrace.txt"));

  const std::wstring input_list = JoinPath(exchange_folder_, L"InputList.txt");
  if (!FileExists(input_list)) return -1;
  auto items = ReadInputList(input_list);
  if (!items) {
    foundation::Trace(L"BackupInit :: InputList.txt could not be read");
    return -1;
  }
  if (!foundation::WriteUtf16Lines(JoinPath(exchange_folder_, L"DLLInput.txt"),
                                   CompareRequest(*items))) {
    foundation::Trace(L"BackupInit :: the compare request could not be written");
    return -1;
  }
  if (Cancelled()) return kCancelled;
  return RunCompare();
}

std::int32_t ManualBackup::RunCompare() {
  const std::wstring program = engine::EngineProgramPath(kCompareProgram);
  const std::wstring parameters = L"<" + exchange_folder_ + L">" + L"<1>";
  auto process =
      platform::CurrentLauncher().Start(program, parameters, platform::ModuleFolder());
  if (!process) {
    foundation::Trace(L"BackupInit :: compare program could not be started: " + program);
    return -1;
  }
  engine::RunEnd end =
      engine::WaitCancellable(process.get(), JoinPath(exchange_folder_, L"cancel.txt"));
  if (end == engine::RunEnd::kCancelled) return kCancelled;
  if (end != engine::RunEnd::kExited) return -1;

  auto lines = foundation::ReadAnsiLines(JoinPath(exchange_folder_, L"DLLOutput1.txt"));
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
