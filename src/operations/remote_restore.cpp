#include <optional>

#include "engine/engine_call.h"
#include "engine/engine_codes.h"
#include "engine/exchange_folder.h"
#include "engine/result_file.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/shared_state.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "operations/retry_policies.h"
#include "operations/shared_texts.h"
#include "platform/ini_file.h"
#include "platform/services.h"
#include "profile/profile_store.h"

namespace tavrine::operations {

namespace {

using foundation::JoinPath;

constexpr const wchar_t* kMachineCodeReadOnly = L"MACHINECODEREADONLY";
constexpr std::uint32_t kPauseMs = 100;

std::wstring WithoutTrailingBackslash(const std::wstring& path) {
  if (!path.empty() && path.back() == L'\\') return path.substr(0, path.size() - 1);
  return path;
}

// Line 4 for one host: a lone "\" stays as it is.
std::wstring OneHostParent(const std::wstring& parentPath) {
  return parentPath == L"\\" ? parentPath : WithoutTrailingBackslash(parentPath);
}

// The "Hosts" entry of the computer, followed by ";"; nullopt when none names it.
std::optional<std::wstring> HostEntryFor(const std::wstring& hosts, const std::wstring& machine) {
  std::size_t begin = 0;
  while (begin < hosts.size()) {
    std::size_t end = hosts.find(L';', begin);
    if (end == std::wstring::npos) end = hosts.size();
    std::wstring entry = hosts.substr(begin, end - begin);
    if (!entry.empty() &&
        foundation::EqualsIgnoreCase(entry.substr(0, entry.find(L'|')), machine))
      return entry + L";";
    begin = end + 1;
  }
  return std::nullopt;
}

}  // namespace

std::int32_t StartRestore(engine::Session& session, const std::wstring& destPath,
                          const std::wstring& parentPath, const std::wstring& tempPath) {
  std::int32_t handle = -1;
  if (!engine::CallerFolderExists(tempPath, L"API_ENTRY_RESTORE")) return -1;
  const std::wstring destination_file = JoinPath(tempPath, L"restdestdir.txt");
  foundation::DeleteFileIfExists(destination_file);

  const std::wstring host_count = engine::Connection::ProfileValue(L"HostCount");
  const bool multiple = !host_count.empty() && host_count != L"0";
  foundation::ThreadState().multiple_pc = multiple;

  std::wstring machine;
  std::wstring parent_line;
  if (host_count != L"1" && multiple) {
    std::size_t slash = parentPath.find(L'\\');
    machine = parentPath.substr(0, slash);
    parent_line = slash == std::wstring::npos ? L"" : parentPath.substr(slash + 1);
  } else {
    parent_line = OneHostParent(parentPath);
  }
  if (!foundation::WriteUtf16Lines(
          destination_file, {L"0", L"4", WithoutTrailingBackslash(destPath), parent_line}))
    foundation::Trace(L"API_ENTRY_RESTORE :: restdestdir.txt could not be written");

  const std::wstring mpc = JoinPath(tempPath, L"MPC.ini");
  if (host_count != L"1") {
    if (!multiple) {
      std::wstring user = profile::GetUserProfile(L"UserName");
      if (user.empty()) user = session.current_user();
      platform::WriteIniString(L"MPC", L"Hosts", user + L"|0;", mpc);
    } else {
      auto entry = HostEntryFor(platform::ReadIniString(L"MPC", L"Hosts", mpc), machine);
      // No entry names the computer: the list is narrowed to none rather than
      // left whole, which would point the engine at another computer's backup.
      if (!entry) foundation::Trace(L"API_ENTRY_RESTORE :: no host entry for " + machine);
      platform::WriteIniString(L"MPC", L"Hosts", entry.value_or(L";"), mpc);
    }
  }
  platform::WriteIniString(L"MPC", L"HostCount", L"1", mpc);

  engine::DeleteExchangeFiles(tempPath);
  auto process = engine::StartEngineCall(
      {.program = engine::ConfiguredEngineProgram(),
       .command = engine::kCodeRestore,
       .folder = tempPath},
      [&](const std::wstring& into) {
        session.connection().WriteRequest(
            into, engine::ProxyArguments(session.proxy(), kMachineCodeReadOnly));
      });
  if (process) {
    platform::CurrentClock().Sleep(2000);
    handle = static_cast<std::int32_t>(process->Release());
  }
  return handle;
}

VersionsResult FetchVersions(engine::Session& session, const std::wstring& remote_file) {
  VersionsResult versions;
  PreloadFailureTextsFromMessageTable();
  versions.folder = engine::MakeExchangeFolder(session.UserFolder());
  if (versions.folder.empty()) {
    foundation::Trace(L"API_GETVERSIONS :: exchange folder could not be created");
    return versions;
  }
  engine::EngineCallSetup setup{.program = engine::ConfiguredEngineProgram(),
                              .command = engine::kCodeVersions,
                              .folder = versions.folder,
                              .wait = engine::WaitKind::kPausing,
                              .pause_ms = kPauseMs,
                              .read_without_start = false};
  auto outcome = engine::RunWithRetry(
      // Three attempts, -416 again after 100 ms.
      ReconnectingPolicy(3, kPauseMs, session),
      [&](const engine::EngineResult& previous) -> std::optional<engine::EngineResult> {
        engine::EngineResult result = engine::CallEngine(
            setup,
            [&](const std::wstring& into) {
              session.connection().WriteVersionRequest(
                  into, engine::ProxyArguments(session.proxy(), kMachineCodeReadOnly),
                  remote_file);
            },
            previous);
        if (result.end == engine::RunEnd::kNotStarted) return std::nullopt;
        return result;
      });
  versions.result = outcome.stop == engine::RetryStop::kAborted ? -1 : outcome.last.raw();
  if (versions.result == engine::EngineCode::kPasswordChanged) {
    platform::CurrentUi().ShowMessageBox(foundation::ThreadState().password_changed_text,
                                         session.configuration().message_title,
                                         platform::kMbOk | platform::kMbIconStop);
  }
  return versions;
}

}  // namespace tavrine::operations
