#include "operations/remote_operations.h"

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
#include "operations/last_quota.h"
#include "operations/retry_policies.h"
#include "operations/shared_texts.h"
#include "platform/services.h"

namespace tavrine::operations {

namespace {

using engine::EngineCallSetup;
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

EngineCallSetup PlainCall(int command, const std::wstring& folder) {
  EngineCallSetup setup;
  setup.program = engine::ConfiguredEngineProgram();
  setup.command = command;
  setup.folder = folder;
  return setup;
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
  connection.SetServerPort(session.configuration().port);

  std::wstring folder = engine::MakeExchangeFolder(session.UserFolder());
  if (folder.empty()) {
    foundation::Trace(std::wstring(method) + L" :: exchange folder could not be created");
    return -1;
  }
  const std::wstring request = JoinPath(folder, L"DLLInput.txt");
  const EngineCallSetup setup = PlainCall(engine::kCodeLogin, folder);
  auto outcome = engine::RunWithRetry(SilentLoginPolicy(), [&](const EngineResult& previous) {
    EngineResult result = engine::CallEngine(
        setup,
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
    ShowStopBox(session.configuration().product_name + L" login failure",
                session.configuration().message_title);
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
  const std::wstring random = engine::GenerateRandomNumber();
  std::wstring folder = engine::MakeExchangeFolder(session.UserFolder());
  if (folder.empty()) return -1;
  const EngineCallSetup setup = PlainCall(engine::kCodeUpdateRandom, folder);
  auto outcome = engine::RunWithRetry(RandomNumberPolicy(), [&](const EngineResult& previous) {
    EngineResult result = engine::CallEngine(
        setup,
        [&](const std::wstring& into) {
          session.connection().WriteRequest(into, engine::ProxyArguments(session.proxy(), random));
        },
        previous);
    if (!result.Is(EngineCode::kNoConnection))
      engine::Connection::SetProfileValue(L"random", random);
    return std::optional<EngineResult>(result);
  });
  DeleteFolderTree(folder);
  return outcome.last.raw();
}

std::int32_t ListRemote(engine::Session& session, const std::wstring& folder) {
  if (!engine::CallerFolderExists(folder, L"API_REMOTE")) return -1;
  engine::Connection& connection = session.connection();
  EngineCallSetup setup = PlainCall(engine::kCodeListing, folder);
  setup.wait = engine::WaitKind::kCancellable;
  setup.cancel_marker = JoinPath(folder, L"cancel.txt");
  setup.poll_result = true;
  if (FileExists(setup.cancel_marker)) return -1;

  const std::wstring listing = JoinPath(folder, L"Backupfile.txt");
  auto outcome = engine::RunWithRetry(
      ServerRetryPolicy(10, 1000),
      [&](const EngineResult& previous) -> std::optional<EngineResult> {
        EngineResult result = engine::CallEngine(
            setup,
            [&](const std::wstring& into) {
              connection.RefreshWorkRoot();
              engine::DeleteExchangeFiles(connection.UserFolder());
              // What an earlier run left in the caller's folder is not this run's answer.
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
        if (FileExists(setup.cancel_marker)) return std::nullopt;
        return result;
      });
  if (outcome.stop == RetryStop::kAborted) return -1;
  if (outcome.stop == RetryStop::kRenewalRefused) return Raw(EngineCode::kRenewalRefused);
  const std::int32_t result = outcome.last.raw();
  ShowListingFailure(result, session.configuration());
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

  const EngineCallSetup setup = PlainCall(engine::kCodeQuota, folder);
  // -416 again at once, four attempts.
  const RetryPolicy policy = ReconnectingPolicy(4, 0, session);
  auto outcome = engine::RunWithRetry(policy, [&](const EngineResult& previous) {
    return std::optional<EngineResult>(engine::CallEngine(
        setup,
        [&](const std::wstring& into) {
          session.connection().WriteRequest(
              into, engine::ProxyArguments(session.proxy(), kMachineCodeReadOnly));
        },
        previous));
  });

  const auto& configuration = session.configuration();
  const auto& state = foundation::ThreadState();
  if (outcome.last.IsIn(engine::codes::kNoConnectionAtAll)) {
    ShowStopBox(state.last_error_text, configuration.message_title);
    DeleteFileIfExists(JoinPath(session.UserFolder(), L"LoginProgress.txt"));
    quota.result = 0;
    return quota;
  }
  if (outcome.last.Is(EngineCode::kPasswordChanged)) {
    ShowStopBox(state.password_changed_text, configuration.failure_title);
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
