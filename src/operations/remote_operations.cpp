#include "operations/remote_operations.h"

#include "engine/engine_call.h"
#include "engine/engine_codes.h"
#include "engine/exchange_folder.h"
#include "engine/result_file.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "operations/last_quota.h"
#include "operations/shared_texts.h"
#include "platform/services.h"

namespace tavrine::operations {

namespace {

using engine::EngineCallSpec;
using engine::EngineCode;
using engine::EngineResult;
using engine::RetryPolicy;
using engine::RetryStop;
using engine::RunEnd;
using foundation::DeleteFileIfExists;
using foundation::DeleteFolderTree;
using foundation::FileExists;
using foundation::JoinPath;

constexpr const wchar_t* kMachineCodeReadOnly = L"MACHINECODEREADONLY";

void ShowStopBox(const std::wstring& text, const std::wstring& title) {
  platform::CurrentUi().ShowMessageBox(text, title, platform::kMbOk | platform::kMbIconStop);
}

EngineCallSpec PlainCall(int command, const std::wstring& folder) {
  EngineCallSpec spec;
  spec.program = engine::ConfiguredEngineProgram();
  spec.command = command;
  spec.folder = folder;
  return spec;
}

// Ten attempts, two seconds apart; no answer at all (0) counts as transient on purpose.
RetryPolicy SilentLoginPolicy() {
  RetryPolicy policy;
  policy.attempts = 10;
  policy.rules.push_back({.codes = engine::codes::kTransientLogin,
                          .pause_ms = 2000,
                          .pause_after_last = false});
  return policy;
}

// Four attempts while the engine cannot connect, none in between.
RetryPolicy RandomNumberPolicy() {
  RetryPolicy policy;
  policy.attempts = 4;
  static constexpr EngineCode kRetried[] = {EngineCode::kNoConnection};
  policy.rules.push_back({.codes = kRetried});
  return policy;
}

RetryPolicy ListingPolicy(bool renewal_permitted) {
  RetryPolicy policy;
  policy.attempts = 10;
  policy.rules.push_back({.codes = engine::codes::kListingRetry, .pause_ms = 1000});
  policy.renew = [] { RenewRandomNumber(); };
  policy.renewal_permitted = renewal_permitted;
  return policy;
}

// -416 again at once; -504 logs in again first and reads the profile afresh.
RetryPolicy QuotaPolicy(engine::Session& session) {
  RetryPolicy policy;
  policy.attempts = 4;
  static constexpr EngineCode kAgain[] = {EngineCode::kNoConnection};
  static constexpr EngineCode kLoginAgain[] = {EngineCode::kReconnect};
  policy.rules.push_back({.codes = kAgain});
  policy.rules.push_back({.codes = kLoginAgain,
                          .pause_ms = 100,
                          .before_pause = [] { Reconnect(); },
                          .after_pause = [&session] { session.Reload(); }});
  return policy;
}

}  // namespace

EntryStart StartSessionEntry(engine::Session& session, const std::wstring& folder) {
  EntryStart start;
  if (!engine::CallerFolderExists(folder, L"API_ENTRY")) return start;
  engine::Connection& connection = session.connection();
  connection.RefreshWorkRoot();
  engine::DeleteExchangeFiles(connection.UserFolder());
  auto process = engine::StartEngineCall(
      PlainCall(engine::kCodeEncryptionStatus, folder), [&](const std::wstring& into) {
        connection.WriteRequest(
            into, engine::ProxyArguments(session.proxy(), engine::RandomNumberForRequest()));
      });
  if (process) start.handle = static_cast<std::int32_t>(process->Release());
  start.completed = true;
  return start;
}

std::int32_t Reconnect() {
  // Called inside another operation, which goes on whatever the login did.
  try {
    engine::Session session = engine::Session::Open();
    return SilentLogin(session, L"API_AutoReconnect");
  } catch (...) {
    foundation::TraceException(L"API_AutoReconnect", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t SilentLogin(engine::Session& session, const wchar_t* method) {
  engine::Connection& connection = session.connection();
  connection.ResolveServerAddress();
  connection.SetServerPort(session.settings().port);

  std::wstring folder = engine::MakeExchangeFolder(session.UserFolder());
  if (folder.empty()) {
    foundation::Trace(std::wstring(method) + L" :: exchange folder could not be created");
    return -1;
  }
  const std::wstring request = JoinPath(folder, L"DLLInput.txt");
  const EngineCallSpec spec = PlainCall(engine::kCodeLogin, folder);
  auto outcome = engine::RunWithRetry(SilentLoginPolicy(), [&](const EngineResult& previous) {
    EngineResult result = engine::CallEngine(
        spec,
        [&](const std::wstring& into) {
          connection.WriteRequest(into,
                                  engine::ProxyArguments(session.proxy(), kMachineCodeReadOnly));
        },
        previous);
    DeleteFileIfExists(request);
    return std::optional<EngineResult>(result);
  });
  const std::int32_t result = outcome.last.raw();
  if (outcome.stop == RetryStop::kAnswered && result == EngineCode::kCleanupInProgress) {
    ShowStopBox(session.settings().product_name + L" login failure",
                session.settings().message_title);
  }
  DeleteFileIfExists(request);
  if (engine::IsIn(result, engine::codes::kSilentLoginFailure)) {
    DeleteFolderTree(folder);
    return result;
  }
  if (auto lines = foundation::ReadAnsiLines(JoinPath(folder, L"DLLOutput1.txt"))) {
    std::wstring address, port;
    if (lines->size() > 0) address = (*lines)[0];
    if (lines->size() > 1) port = (*lines)[1];
    connection.SetServerAddress(address);
    connection.SetServerPort(port);
    connection.SaveServerAddress();
  }
  return result;
}

std::int32_t RenewRandomNumber() {
  // Called inside the listing and the delete, which go on whatever it gave.
  try {
    engine::Session session = engine::Session::Open();
    return RenewRandomNumber(session);
  } catch (...) {
    foundation::TraceException(L"API_UPDATE_RAND_NUM", foundation::DescribeCurrentException());
    return 0;
  }
}

std::int32_t RenewRandomNumber(engine::Session& session) {
  EngineResult last;
  // The code read so far is the answer even when a later step fails.
  try {
    const std::wstring random = engine::GenerateRandomNumber();
    std::wstring folder = engine::MakeExchangeFolder(session.UserFolder());
    if (folder.empty()) return -1;
    const EngineCallSpec spec = PlainCall(engine::kCodeUpdateRandom, folder);
    engine::RunWithRetry(RandomNumberPolicy(), [&](const EngineResult& previous) {
      last = engine::CallEngine(
          spec,
          [&](const std::wstring& into) {
            session.connection().WriteRequest(into,
                                              engine::ProxyArguments(session.proxy(), random));
          },
          previous);
      if (!last.Is(EngineCode::kNoConnection))
        engine::Connection::SetProfileValue(L"random", random);
      return std::optional<EngineResult>(last);
    });
    DeleteFolderTree(folder);
  } catch (...) {
    foundation::TraceException(L"API_UPDATE_RAND_NUM", foundation::DescribeCurrentException());
  }
  return last.raw();
}

std::int32_t ListRemote(engine::Session& session, const std::wstring& folder) {
  if (!engine::CallerFolderExists(folder, L"API_REMOTE")) return -1;
  engine::Connection& connection = session.connection();
  EngineCallSpec spec = PlainCall(engine::kCodeListing, folder);
  spec.wait = engine::WaitKind::kCancellable;
  spec.cancel_marker = JoinPath(folder, L"cancel.txt");
  spec.poll_result = true;
  if (FileExists(spec.cancel_marker)) return -1;

  const std::wstring listing = JoinPath(folder, L"Backupfile.txt");
  auto outcome = engine::RunWithRetry(
      ListingPolicy(session.settings().renew_random_permitted),
      [&](const EngineResult& previous) -> std::optional<EngineResult> {
        EngineResult result = engine::CallEngine(
            spec,
            [&](const std::wstring& into) {
              connection.RefreshWorkRoot();
              engine::DeleteExchangeFiles(connection.UserFolder());
              // What an earlier run left in the caller's folder must not pass for this run's answer.
              engine::DeleteExchangeFiles(into);
              DeleteFileIfExists(listing);
              connection.WriteRequest(into, engine::ProxyArguments(
                                                session.proxy(), engine::RandomNumberForRequest()));
            },
            previous);
        if (result.end != RunEnd::kExited) return std::nullopt;
        if (!result.read) {
          foundation::Trace(L"API_REMOTE :: the engine left no result");
          return std::nullopt;
        }
        if (result.value == 0) {
          result.value = Raw(FileExists(listing) ? EngineCode::kSuccessWithData
                                                 : EngineCode::kNothingToShow);
        }
        DeleteFileIfExists(JoinPath(folder, L"DLLInput.txt"));
        if (FileExists(spec.cancel_marker)) return std::nullopt;
        return result;
      });
  if (outcome.stop == RetryStop::kAborted) return -1;
  if (outcome.stop == RetryStop::kRenewalRefused) return Raw(EngineCode::kRenewalRefused);
  const std::int32_t result = outcome.last.raw();
  ShowListingFailure(result);
  return result;
}

QuotaResult ReadQuota(engine::Session& session) {
  QuotaResult quota;
  std::wstring folder = engine::MakeExchangeFolder(session.UserFolder());
  if (folder.empty()) {
    // Without it the request would land in the current folder.
    foundation::Trace(L"API_GetQuota :: exchange folder could not be created");
    return quota;
  }
  PreloadFailureTexts();

  const EngineCallSpec spec = PlainCall(engine::kCodeQuota, folder);
  auto outcome = engine::RunWithRetry(QuotaPolicy(session), [&](const EngineResult& previous) {
    return std::optional<EngineResult>(engine::CallEngine(
        spec,
        [&](const std::wstring& into) {
          session.connection().WriteRequest(
              into, engine::ProxyArguments(session.proxy(), kMachineCodeReadOnly));
        },
        previous));
  });

  const auto& settings = session.settings();
  if (outcome.last.IsIn(engine::codes::kNoConnectionAtAll)) {
    ShowStopBox(settings.last_error_text, settings.message_title);
    DeleteFileIfExists(JoinPath(session.UserFolder(), L"LoginProgress.txt"));
    quota.result = 0;
    return quota;
  }
  if (outcome.last.Is(EngineCode::kPasswordChanged)) {
    ShowStopBox(settings.password_changed_text, settings.failure_title);
    DeleteFolderTree(folder);
    quota.result = 0;
    return quota;
  }
  double used = -1;
  double max_size = 0;
  if (auto lines = foundation::ReadAnsiLines(JoinPath(folder, L"Quota.txt"))) {
    if (lines->size() > 0) used = foundation::LeadingNumber((*lines)[0]);
    if (lines->size() > 1) max_size = foundation::LeadingNumber((*lines)[1]);
    // Kept for the session window, which shows it without another engine run.
    if (!lines->empty()) LastQuota() = QuotaReading{used, max_size, platform::CurrentClock().Now()};
  }
  quota.used_space = used;
  quota.max_size = max_size;
  DeleteFolderTree(folder);
  quota.result = 0;
  return quota;
}

}  // namespace tavrine::operations
