#include "operations/cls_api_interface.h"

#include <algorithm>
#include <initializer_list>

#include "engine/engine_run.h"
#include "engine/exchange_folder.h"
#include "foundation/file_system.h"
#include "foundation/language_text.h"
#include "foundation/message_table.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "operations/last_quota.h"
#include "operations/shared_texts.h"
#include "platform/services.h"

namespace tavrine::operations {

namespace {

using engine::RunEnd;
using foundation::CurrentSettings;
using foundation::DeleteFileIfExists;
using foundation::DeleteFolderTree;
using foundation::FileExists;
using foundation::JoinPath;

constexpr const wchar_t* kMachineCodeReadOnly = L"MACHINECODEREADONLY";
constexpr int kLoginAttempts = 10;
constexpr int kListingAttempts = 10;
constexpr int kQuotaAttempts = 4;
constexpr int kRandomAttempts = 4;
// After the engine has ended, its result file may still be on its way.
constexpr std::uint32_t kResultPollMs = 100;
constexpr std::uint32_t kResultPollLimitMs = 10000;

bool IsOneOf(std::int32_t code, std::initializer_list<std::int32_t> codes) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

void Pause(std::uint32_t ms) { platform::CurrentClock().Sleep(ms); }

void ShowStopBox(const std::wstring& text, const std::wstring& title) {
  platform::CurrentUi().ShowMessageBox(text, title, platform::kMbOk | platform::kMbIconStop);
}

}  // namespace

bool IsTransientLoginCode(std::int32_t code) {
  return IsOneOf(code, {0, -416, -405, -12008, -12009, -12010});
}

engine::ProxySettings clsAPI_Interface::LoadSession() {
  base_path_ = foundation::ComputeWorkRoot();
  client_.LoadConfigurations();
  current_user_ = client_.GetCurrentUser();
  engine::ProxySettings proxy;
  client_.LoadProxySettings(proxy);
  return proxy;
}

std::int32_t clsAPI_Interface::API_ENTRY(const std::wstring& strtempfd, std::int16_t& lResult) {
  std::int32_t handle = -1;
  try {
    if (!engine::CallerFolderExists(strtempfd, L"API_ENTRY")) return -1;
    engine::ProxySettings proxy = LoadSession();
    client_.DeleteInputOutFiles();
    client_.WriteDLLInputFileTempFd(
        strtempfd, engine::ProxyArguments(proxy, engine::RandomNumberForRequest(client_)));
    auto process = engine::StartEngine(engine::ConfiguredEngineProgram(),
                                       engine::kCodeEncryptionStatus, strtempfd);
    if (process) handle = static_cast<std::int32_t>(process->Release());
    lResult = 1;
  } catch (...) {
    foundation::TraceException(L"API_ENTRY", foundation::DescribeCurrentException());
  }
  return handle;
}

std::int32_t clsAPI_Interface::API_AutoReconnect() {
  try {
    return SilentLogin(L"API_AutoReconnect");
  } catch (...) {
    foundation::TraceException(L"API_AutoReconnect", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t clsAPI_Interface::API_AutoMultipleServerSupport() {
  try {
    return SilentLogin(L"API_AutoMultipleServerSupport");
  } catch (...) {
    foundation::TraceException(L"API_AutoMultipleServerSupport",
                               foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t clsAPI_Interface::SilentLogin(const wchar_t* method) {
  base_path_ = foundation::ComputeWorkRoot();
  client_.LoadConfigurations();
  current_user_ = client_.GetCurrentUser();
  client_.GetIPAddress();
  engine::ProxySettings proxy;
  client_.LoadProxySettings(proxy);
  client_.SetOutgoingPort(CurrentSettings().port);

  std::wstring folder = engine::MakeExchangeFolder(client_.UserFolder());
  if (folder.empty()) {
    foundation::Trace(std::wstring(method) + L" :: exchange folder could not be created");
    return -1;
  }
  const std::wstring request = JoinPath(folder, L"DLLInput.txt");
  bool has_result = false;
  std::wstring description;
  double value = 0;
  for (int attempt = 0; attempt < kLoginAttempts;) {
    client_.WriteDLLInputFileTempFd(folder, engine::ProxyArguments(proxy, kMachineCodeReadOnly));
    engine::RunEngine(engine::ConfiguredEngineProgram(), engine::kCodeLogin, folder);
    client_.ReadDLLOutputFileTempFd(folder, has_result, description, value);
    DeleteFileIfExists(request);
    std::int32_t code = foundation::RoundToInt32(value);
    if (!IsTransientLoginCode(code)) {
      if (code == -511) {
        ShowStopBox(CurrentSettings().product_name + L" login failure",
                    CurrentSettings().message_title);
      }
      break;
    }
    // No answer at all (0) counts as transient on purpose.
    if (++attempt < kLoginAttempts) Pause(2000);
  }

  std::int32_t result = foundation::RoundToInt32(value);
  DeleteFileIfExists(request);
  if (IsOneOf(result, {-401, -40, -50, -511, -506, -507, -508, -509, -422, -403, -416, -405,
                       -12008, -12009, -12010, -504})) {
    DeleteFolderTree(folder);
    return result;
  }
  std::wstring address, port;
  if (auto lines = foundation::ReadAnsiLines(JoinPath(folder, L"DLLOutput1.txt"))) {
    if (lines->size() > 0) address = (*lines)[0];
    if (lines->size() > 1) port = (*lines)[1];
    client_.SetIPAddress(address);
    client_.SetOutgoingPort(port);
    client_.SaveIP_PORT();
  }
  return result;
}

std::int32_t clsAPI_Interface::API_UPDATE_RAND_NUM() {
  double value = 0;
  try {
    engine::ProxySettings proxy = LoadSession();
    std::wstring random = client_.GenerateRandomNumber();
    std::wstring folder = engine::MakeExchangeFolder(client_.UserFolder());
    if (folder.empty()) return -1;
    bool has_result = false;
    std::wstring description;
    for (int attempt = 0; attempt < kRandomAttempts; ++attempt) {
      client_.WriteDLLInputFileTempFd(folder, engine::ProxyArguments(proxy, random));
      engine::RunEngine(engine::ConfiguredEngineProgram(), engine::kCodeUpdateRandom, folder);
      client_.ReadDLLOutputFileTempFd(folder, has_result, description, value);
      if (foundation::RoundToInt32(value) != -416) {
        client_.UpdateUserProfile(L"random", random);
        break;
      }
    }
    DeleteFolderTree(folder);
  } catch (...) {
    foundation::TraceException(L"API_UPDATE_RAND_NUM", foundation::DescribeCurrentException());
  }
  return foundation::RoundToInt32(value);
}

std::int32_t clsAPI_Interface::API_REMOTE(const std::wstring& strtempfd) {
  std::int32_t result = -1;
  try {
    if (!engine::CallerFolderExists(strtempfd, L"API_REMOTE")) return -1;
    engine::ProxySettings proxy = LoadSession();
    const std::wstring cancel_marker = JoinPath(strtempfd, L"cancel.txt");
    if (FileExists(cancel_marker)) return -1;

    bool has_result = false;
    std::wstring description;
    double value = 0;
    for (int attempt = 0; attempt < kListingAttempts;) {
      client_.DeleteInputOutFiles();
      // What an earlier run left in the caller's folder must not pass for this run's answer.
      client_.DeleteInputOutFilesTempFd(strtempfd);
      DeleteFileIfExists(JoinPath(strtempfd, L"Backupfile.txt"));
      client_.WriteDLLInputFileTempFd(
          strtempfd, engine::ProxyArguments(proxy, engine::RandomNumberForRequest(client_)));
      auto process = engine::StartEngine(engine::ConfiguredEngineProgram(),
                                         engine::kCodeListing, strtempfd);
      RunEnd end = engine::WaitCancellable(process.get(), cancel_marker);
      if (end == RunEnd::kCancelled) return -1;
      if (end != RunEnd::kExited) return -1;

      // A failure answer is a result too, though the reader reports it as "false".
      auto answered = [&strtempfd] {
        return FileExists(JoinPath(strtempfd, L"DLLOutput.txt")) ||
               FileExists(JoinPath(strtempfd, L"DLLOutputInfo.txt"));
      };
      for (std::uint32_t waited = 0; !answered() && waited < kResultPollLimitMs;
           waited += kResultPollMs) {
        Pause(kResultPollMs);
      }
      if (!answered()) {
        foundation::Trace(L"API_REMOTE :: the engine left no result");
        return -1;
      }
      client_.ReadDLLOutputFileTempFd(strtempfd, has_result, description, value);
      if (value == 0) value = FileExists(JoinPath(strtempfd, L"Backupfile.txt")) ? 402 : -412;
      DeleteFileIfExists(JoinPath(strtempfd, L"DLLInput.txt"));
      if (FileExists(cancel_marker)) return -1;

      std::int32_t code = foundation::RoundToInt32(value);
      if (IsListingRetryCode(code)) {
        ++attempt;
        Pause(1000);
      } else if (code == -505) {
        if (!CurrentSettings().renew_random_permitted) return 401;
        API_UPDATE_RAND_NUM();
        ++attempt;
        Pause(500);
      } else {
        break;
      }
    }
    result = foundation::RoundToInt32(value);
    ShowListingFailure(result);
  } catch (...) {
    foundation::TraceException(L"API_REMOTE", foundation::DescribeCurrentException());
  }
  return result;
}

std::int16_t clsAPI_Interface::API_GetQuota(double& sMaxSize, double& sUsedSpace) {
  std::int16_t result = -1;
  try {
    engine::ProxySettings proxy = LoadSession();
    std::wstring folder = engine::MakeExchangeFolder(client_.UserFolder());
    if (folder.empty()) {
      // Without it the request would land in the current folder.
      foundation::Trace(L"API_GetQuota :: exchange folder could not be created");
      return result;
    }
    PreloadFailureTexts();

    bool has_result = false;
    std::wstring description;
    double value = 0;
    for (int attempt = 0; attempt < kQuotaAttempts;) {
      client_.WriteDLLInputFileTempFd(folder, engine::ProxyArguments(proxy, kMachineCodeReadOnly));
      engine::RunEngine(engine::ConfiguredEngineProgram(), engine::kCodeQuota, folder);
      client_.ReadDLLOutputFileTempFd(folder, has_result, description, value);
      std::int32_t code = foundation::RoundToInt32(value);
      if (code == -416) {
        ++attempt;
      } else if (code == -504) {
        clsAPI_Interface().API_AutoReconnect();
        ++attempt;
        Pause(100);
        client_.LoadConfigurations();
      } else {
        break;
      }
    }

    std::int32_t code = foundation::RoundToInt32(value);
    if (IsOneOf(code, {-416, -405, -12008, -12009, -12010})) {
      ShowStopBox(CurrentSettings().last_error_text, CurrentSettings().message_title);
      DeleteFileIfExists(JoinPath(client_.UserFolder(), L"LoginProgress.txt"));
      return 0;
    }
    if (code == -403) {
      ShowStopBox(CurrentSettings().password_changed_text, CurrentSettings().failure_title);
      DeleteFolderTree(folder);
      return 0;
    }
    // The provisional figure is overwritten at once; the order is intended.
    sUsedSpace = (code < 0 || code == 402 || code == 401) ? 0 : value;
    sMaxSize = 0;
    sUsedSpace = -1;
    if (auto lines = foundation::ReadAnsiLines(JoinPath(folder, L"Quota.txt"))) {
      if (lines->size() > 0) sUsedSpace = foundation::LeadingNumber((*lines)[0]);
      if (lines->size() > 1) sMaxSize = foundation::LeadingNumber((*lines)[1]);
      // Kept for the session window, which shows it without another engine run.
      if (!lines->empty()) LastQuota() = QuotaReading{sUsedSpace, sMaxSize, platform::CurrentClock().Now()};
    }
    DeleteFolderTree(folder);
    result = 0;
  } catch (...) {
    foundation::TraceException(L"API_GetQuota", foundation::DescribeCurrentException());
  }
  return result;
}

}  // namespace tavrine::operations
