// restore, rm, backup
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "engine/result_file.h"
#include "engine/session.h"
#include "engine/engine_run.h"
#include "engine/exchange_folder.h"
#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "format.h"
#include "contract/c_backup.h"
#include "contract/c_restore.h"
#include "contract/ui_commands.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "remote_walk.h"

namespace tavrine::cli {

namespace {

// A fresh exchange folder of the logged-in user, removed when done.
class ExchangeFolder {
 public:
  ExchangeFolder() {
    path_ = engine::MakeExchangeFolder(engine::Session::Open().UserFolder());
  }
  ~ExchangeFolder() {
    if (!path_.empty()) foundation::DeleteFolderTree(path_);
  }
  ExchangeFolder(const ExchangeFolder&) = delete;
  ExchangeFolder& operator=(const ExchangeFolder&) = delete;

  const std::wstring& path() const { return path_; }
  std::wstring File(const wchar_t* name) const { return foundation::JoinPath(path_, name); }

 private:
  std::wstring path_;
};

// Waits for an engine whose handle an operation handed back; its answer code.
std::int32_t WaitForEngine(std::int32_t handle, const std::wstring& folder) {
  auto process = platform::AdoptProcess(handle);
  if (!process || engine::WaitPlain(process.get()) != engine::RunEnd::kExited) return -1;
  return foundation::RoundToInt32(engine::ReadResultFile(folder).value.value_or(-1));
}

std::wstring AbsoluteLocalPath(const std::string& path) {
  std::error_code error;
  auto absolute = std::filesystem::absolute(platform::ToFsPath(Wide(path)), error);
  return platform::FromFsPath(error ? platform::ToFsPath(Wide(path)) : absolute);
}

}  // namespace

int CommandRestore(const Arguments& args) {
  auto destination = args.Value("to");
  if (args.positional().size() != 1 || !destination) {
    std::cerr << "usage: tavrine restore REMOTE-PATH --to LOCAL-FOLDER\n";
    return kExitUsage;
  }
  if (!RequireSession()) return kExitNotReady;
  std::wstring target = AbsoluteLocalPath(*destination);
  std::error_code error;
  std::filesystem::create_directories(platform::ToFsPath(target), error);
  ExchangeFolder exchange;
  if (exchange.path().empty()) return Fail("no exchange folder could be made", -1001);

  std::wstring remote = Wide(args.positional()[0]);
  Progress("Restoring " + args.positional()[0] + "...");
  std::int32_t handle = contract::CRestore().W_Restore(target, remote, exchange.path());
  if (handle == -1) return Fail("the restore could not be started", -1);
  std::int32_t code = WaitForEngine(handle, exchange.path());
  EndProgress();
  if (code < 0) return Fail("the restore failed", code);
  std::cout << "Restored " << args.positional()[0] << " into " << Utf8(target) << "\n";
  return kExitOk;
}

int CommandRm(const Arguments& args) {
  if (args.positional().empty()) {
    std::cerr << "usage: tavrine rm REMOTE-PATH...\n";
    return kExitUsage;
  }
  if (!RequireSession()) return kExitNotReady;
  ExchangeFolder list_folder;  // holds the caller's list; the operation copies it
  if (list_folder.path().empty()) return Fail("no folder for the delete list", -1001);
  std::vector<std::wstring> items;
  for (const auto& path : args.positional()) {
    std::wstring item = Wide(path);
    std::replace(item.begin(), item.end(), L'/', L'\\');
    items.push_back(item);
  }
  std::wstring list = list_folder.File(L"InputDelete.txt");
  if (!foundation::WriteUtf16Lines(list, items)) return Fail("the delete list could not be written", -1001);
  Progress("Deleting " + std::to_string(items.size()) + " item(s)...");
  std::int32_t result = contract::UICommands().W_DeleteRemoteFiles(list);
  EndProgress();
  if (result != 1) return Fail("the delete failed", result);
  for (const auto& path : args.positional()) std::cout << "Deleted " << path << "\n";
  return kExitOk;
}

int CommandBackup(const Arguments& args) {
  if (args.positional().empty()) {
    std::cerr << "usage: tavrine backup LOCAL-FILE-OR-FOLDER...\n";
    return kExitUsage;
  }
  if (!RequireSession()) return kExitNotReady;
  ExchangeFolder exchange;
  if (exchange.path().empty()) return Fail("no exchange folder could be made", -1001);
  std::vector<std::wstring> inputs;
  for (const auto& path : args.positional()) {
    std::wstring local = AbsoluteLocalPath(path);
    if (foundation::FolderExists(local) && local.back() != platform::kPathSeparator) {
      local += platform::kPathSeparator;
    }
    inputs.push_back(local);
  }
  if (!foundation::WriteUtf16Lines(exchange.File(L"InputList.txt"), inputs)) {
    return Fail("the backup list could not be written", -1001);
  }

  contract::CBackup backup;
  Progress("Comparing with the remote backup...");
  std::int32_t compared = backup.W_BackupInit(0, exchange.path());
  if (compared != operations::kCompareFoundItems) {
    backup.W_BackupExitInstance();
    EndProgress();
    if (compared == 0) {
      std::cout << "Nothing to back up: the remote backup is up to date\n";
      return kExitOk;
    }
    return Fail("the compare step failed", compared);
  }
  Progress("Uploading...");
  std::int32_t completed = 0;
  std::int32_t started = backup.W_DoBackup(completed);
  std::int32_t code = -1;
  if (started == 1) {
    auto pid = foundation::ParseInt32(profile::GetUserProfile(L"TavrinEClientPID"));
    code = pid ? WaitForEngine(*pid, exchange.path()) : -1;
  }
  backup.W_BackupExitInstance();
  EndProgress();
  if (started != 1) return Fail("the upload could not be started", started);
  if (code < 0) return Fail("the upload failed", code);
  std::cout << "Backed up " << args.positional().size() << " item(s)\n";
  return kExitOk;
}

}  // namespace tavrine::cli
