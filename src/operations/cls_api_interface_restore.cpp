#include <optional>

#include "engine/engine_run.h"
#include "engine/exchange_folder.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "operations/cls_api_interface.h"
#include "operations/shared_texts.h"
#include "platform/ini_file.h"
#include "platform/services.h"
#include "profile/profile_store.h"

namespace tavrine::operations {

namespace {

using foundation::CurrentSettings;
using foundation::JoinPath;

constexpr const wchar_t* kMachineCodeReadOnly = L"MACHINECODEREADONLY";
constexpr int kVersionAttempts = 3;
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

std::int32_t clsAPI_Interface::API_ENTRY_RESTORE(const std::wstring& destPath,
                                                 const std::wstring& parentPath,
                                                 const std::wstring& tempPath) {
  std::int32_t handle = -1;
  try {
    if (!engine::CallerFolderExists(tempPath, L"API_ENTRY_RESTORE")) return -1;
    engine::ProxySettings proxy = LoadSession();
    const std::wstring destination_file = JoinPath(tempPath, L"restdestdir.txt");
    foundation::DeleteFileIfExists(destination_file);

    const std::wstring host_count = client_.GetUserProfile(L"HostCount");
    const bool multiple = !host_count.empty() && host_count != L"0";
    CurrentSettings().multiple_pc = multiple;

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
        if (user.empty()) user = current_user_;
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

    client_.DeleteInputOutFilesTempFd(tempPath);
    client_.WriteDLLInputFileTempFd(tempPath, engine::ProxyArguments(proxy, kMachineCodeReadOnly));
    auto process =
        engine::StartEngine(engine::ConfiguredEngineProgram(), engine::kCodeRestore, tempPath);
    if (process) {
      platform::CurrentClock().Sleep(2000);
      handle = static_cast<std::int32_t>(process->Release());
    }
  } catch (...) {
    foundation::TraceException(L"API_ENTRY_RESTORE", foundation::DescribeCurrentException());
  }
  return handle;
}

std::int32_t clsAPI_Interface::API_GETVERSIONS(const std::wstring& filepath, std::wstring& pstrtemp) {
  std::int32_t result = -1;
  try {
    base_path_ = foundation::ComputeWorkRoot();
    client_.LoadConfigurations();
    current_user_ = client_.GetCurrentUser();
    PreloadFailureTextsFromMessageTable();
    engine::ProxySettings proxy;
    client_.LoadProxySettings(proxy);

    pstrtemp = engine::MakeExchangeFolder(client_.UserFolder());
    if (pstrtemp.empty()) {
      foundation::Trace(L"API_GETVERSIONS :: exchange folder could not be created");
      return result;
    }
    double value = 0;
    bool has_result = false;
    std::wstring description;
    for (int attempt = 0; attempt < kVersionAttempts; ++attempt) {
      client_.WriteDLLInputVersionFile(pstrtemp, engine::ProxyArguments(proxy, kMachineCodeReadOnly),
                                       filepath);
      auto process =
          engine::StartEngine(engine::ConfiguredEngineProgram(), engine::kCodeVersions, pstrtemp);
      if (!process) {
        value = -1;
        break;
      }
      engine::WaitPausing(process.get(), kPauseMs);
      client_.ReadDLLOutputFileTempFd(pstrtemp, has_result, description, value);
      const std::int32_t code = foundation::RoundToInt32(value);
      if (code == -416) {
        platform::CurrentClock().Sleep(kPauseMs);
      } else if (code == -504) {
        clsAPI_Interface().API_AutoReconnect();
        platform::CurrentClock().Sleep(kPauseMs);
        client_.LoadConfigurations();
      } else {
        break;
      }
    }
    result = foundation::RoundToInt32(value);
    if (result == -403) {
      platform::CurrentUi().ShowMessageBox(CurrentSettings().password_changed_text,
                                           CurrentSettings().message_title,
                                           platform::kMbOk | platform::kMbIconStop);
    }
  } catch (...) {
    foundation::TraceException(L"API_GETVERSIONS", foundation::DescribeCurrentException());
  }
  return result;
}

}  // namespace tavrine::operations
