#include <algorithm>
#include <initializer_list>
#include <optional>
#include <vector>

#include "engine/engine_run.h"
#include "engine/exchange_folder.h"
#include "foundation/file_system.h"
#include "foundation/message_table.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/time_format.h"
#include "foundation/trace_log.h"
#include "operations/cls_api_interface.h"
#include "operations/shared_texts.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/character_shift.h"

namespace tavrine::operations {

namespace {

using foundation::CurrentSettings;
using foundation::FileExists;
using foundation::JoinPath;

constexpr int kDeleteAttempts = 4;
constexpr const wchar_t* kFirewallFolderSuffix = L"_123456";
// After the engine has ended, its result file may still be on its way.
constexpr std::uint32_t kResultPollMs = 100;
constexpr std::uint32_t kResultPollLimitMs = 10000;

bool IsOneOf(std::int32_t code, std::initializer_list<std::int32_t> codes) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// Answers after which the delete is tried again (after 2000 ms).
bool IsDeleteRetryCode(std::int32_t code) {
  return IsOneOf(code, {-416, -404, -417, -403, -508, -507, -506, -401, -405, -12008, -12009,
                        -12010});
}

void ShowDeleteBox(const std::wstring& text, unsigned icon) {
  platform::CurrentUi().ShowMessageBox(text, CurrentSettings().failure_title,
                                       platform::kMbOk | icon);
}

// The shell side's progress window: hidden, not closed, as the shell side
// still owns it.
void HideDeletingWindow() {
  platform::CurrentUi().HideWindowByTitle(CurrentSettings().product_name + L" - Deleting");
}

// The one box a finished delete shows; gives the method's result.
std::int32_t ReportDeleteOutcome(std::int32_t code) {
  if (IsDeleteRetryCode(code) || code == -505) {
    ShowDeleteBox(ConnectionFailureText(), platform::kMbIconStop);
    return code;
  }
  if (code == 402 || code == 0) return 1;
  if (code == -408) {
    ShowDeleteBox(foundation::MessageText(-408).value_or(L""), platform::kMbIconInformation);
  } else if (code == -511) {
    ShowDeleteBox(foundation::MessageText(-511).value_or(L""), platform::kMbIconStop);
  }
  return code;
}

// <base path>iTemp<sep><H_mm_ss_ms>_123456, each level made when missing.
std::wstring MakeFirewallFolder(const std::wstring& base_path) {
  std::wstring root = JoinPath(base_path, L"iTemp");
  if (!foundation::FolderExists(root) && !foundation::CreateFolder(root)) return {};
  std::wstring folder =
      JoinPath(root, foundation::FormatExchangeFolderName(platform::CurrentClock().Now()) +
                         kFirewallFolderSuffix);
  if (!foundation::FolderExists(folder) && !foundation::CreateFolder(folder)) return {};
  return folder;
}

// One engine run; nullopt when it gave no answer at all.
std::optional<std::int32_t> RunDeleteOnce(engine::clsClient& client, const std::wstring& folder,
                                          const engine::ProxySettings& proxy) {
  // Result files of an earlier attempt must not pass for this one's.
  client.DeleteInputOutFilesTempFd(folder);
  client.WriteDLLInputFileTempFd(
      folder, engine::ProxyArguments(proxy, engine::RandomNumberForRequest(client)));
  if (engine::RunEngine(engine::FixedEngineProgram(), engine::kCodeDelete, folder) !=
      engine::RunEnd::kExited) {
    return std::nullopt;
  }
  auto answered = [&folder] {
    return FileExists(JoinPath(folder, L"DLLOutput.txt")) ||
           FileExists(JoinPath(folder, L"DLLOutputInfo.txt"));
  };
  for (std::uint32_t waited = 0; !answered() && waited < kResultPollLimitMs;
       waited += kResultPollMs) {
    platform::CurrentClock().Sleep(kResultPollMs);
  }
  if (!answered()) return std::nullopt;
  bool has_result = false;
  std::wstring description;
  double value = 0;
  client.ReadDLLOutputFileTempFd(folder, has_result, description, value);
  return foundation::RoundToInt32(value);
}

}  // namespace

std::int32_t clsAPI_Interface::API_DELETE_REMOTE_FILE(const std::wstring& sInputDelete) {
  std::int32_t result = -1;
  std::wstring folder;
  try {
    engine::ProxySettings proxy = LoadSession();
    folder = engine::MakeExchangeFolder(client_.UserFolder());
    if (folder.empty()) {
      foundation::Trace(L"API_DELETE_REMOTE_FILE :: exchange folder could not be created");
      return -1;
    }
    if (sInputDelete.empty() || !FileExists(sInputDelete)) {
      foundation::Trace(L"API_DELETE_REMOTE_FILE :: no list of items at '" + sInputDelete + L"'");
      foundation::DeleteFolderTree(folder);
      return -1;
    }
    if (!foundation::CopyFileReplacing(sInputDelete, JoinPath(folder, L"InputDelete.txt"))) {
      foundation::Trace(L"API_DELETE_REMOTE_FILE :: the list could not be copied: " +
                        sInputDelete);
    }

    std::optional<std::int32_t> code;
    for (int attempt = 0; attempt < kDeleteAttempts;) {
      code = RunDeleteOnce(client_, folder, proxy);
      if (!code) break;
      if (IsDeleteRetryCode(*code)) {
        ++attempt;
        platform::CurrentClock().Sleep(2000);
      } else if (*code == -505) {
        if (!CurrentSettings().renew_random_permitted) {
          foundation::DeleteFolderTree(folder);
          return 401;
        }
        clsAPI_Interface().API_UPDATE_RAND_NUM();
        ++attempt;
        platform::CurrentClock().Sleep(500);
      } else {
        break;
      }
    }
    foundation::DeleteFolderTree(folder);
    HideDeletingWindow();
    if (!code) {
      foundation::Trace(L"API_DELETE_REMOTE_FILE :: the engine left no result");
      return -1;
    }
    result = ReportDeleteOutcome(*code);
  } catch (...) {
    foundation::TraceException(L"API_DELETE_REMOTE_FILE", foundation::DescribeCurrentException());
    if (!folder.empty()) foundation::DeleteFolderTree(folder);
  }
  return result;
}

std::int32_t clsAPI_Interface::API_FirewallSettings() {
  std::int32_t result = 0;
  try {
    base_path_ = foundation::ComputeWorkRoot();
    foundation::LoadConfigurations();
    const auto& settings = CurrentSettings();
    const std::wstring marker = base_path_ + settings.installation_name + L"Client.txt";
    if (FileExists(marker)) return 0;

    client_.GetIPAddress();
    std::wstring folder = MakeFirewallFolder(base_path_);
    if (folder.empty()) {
      foundation::Trace(L"API_FirewallSettings :: iTemp folder could not be created");
      return 0;
    }
    const std::wstring request = JoinPath(folder, L"DLLInput.txt");
    foundation::DeleteFileIfExists(request);
    // Placeholder credentials: the probe must never carry the user's own.
    std::vector<std::wstring> lines = {client_.server_address(),
                                       settings.port,
                                       profile::ShiftCharacters(L"username"),
                                       profile::ShiftCharacters(L"password"),
                                       profile::ShiftCharacters(L"noencryption"),
                                       L"MACHINECODEREADONLY"};
    lines.insert(lines.end(), 6, L"0");
    // A plain (ANSI) text file, unlike the Unicode requests of the other runs.
    for (const std::wstring& line : lines) {
      if (!foundation::AppendAnsiLine(request, line)) {
        foundation::Trace(L"API_FirewallSettings :: request could not be written");
        break;
      }
    }
    // Started and not waited for: the marker tells whether an earlier run got through.
    engine::StartEngine(engine::FixedEngineProgram(), engine::kCodeLogin, folder);
    if (FileExists(marker)) {
      foundation::DeleteFileIfExists(marker);
      result = 1;
    }
  } catch (...) {
    foundation::TraceException(L"API_FirewallSettings", foundation::DescribeCurrentException());
  }
  return result;
}

}  // namespace tavrine::operations
