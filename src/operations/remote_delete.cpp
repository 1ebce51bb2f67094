#include <optional>
#include <vector>

#include "engine/engine_call.h"
#include "engine/engine_codes.h"
#include "engine/exchange_folder.h"
#include "engine/result_file.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/message_table.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/time_format.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "operations/retry_policies.h"
#include "operations/shared_texts.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/character_shift.h"

namespace tavrine::operations {

namespace {

using foundation::FileExists;
using foundation::JoinPath;

using engine::EngineCode;

constexpr const wchar_t* kFirewallFolderSuffix = L"_123456";

void ShowDeleteBox(const foundation::Configuration& configuration, const std::wstring& text,
                   unsigned icon) {
  platform::CurrentUi().ShowMessageBox(text, configuration.failure_title, platform::kMbOk | icon);
}

// The shell side's progress window: hidden, not closed, as the shell side
// still owns it.
void HideDeletingWindow(const foundation::Configuration& configuration) {
  platform::CurrentUi().HideWindowByTitle(configuration.product_name + L" - Deleting");
}

// The one box a finished delete shows; gives the method's result.
std::int32_t ReportDeleteOutcome(const foundation::Configuration& configuration,
                                 std::int32_t code) {
  if (engine::IsIn(code, engine::codes::kListingRetry) ||
      code == EngineCode::kMachineNotRegistered) {
    ShowDeleteBox(configuration, ConnectionFailureText(), platform::kMbIconStop);
    return code;
  }
  if (code == EngineCode::kSuccessWithData || code == EngineCode::kNoAnswer) return 1;
  if (code == EngineCode::kCannotGetFiles || code == EngineCode::kCleanupInProgress) {
    ShowDeleteBox(
        configuration, foundation::MessageText(code).value_or(L""),
        code == EngineCode::kCannotGetFiles ? platform::kMbIconInformation : platform::kMbIconStop);
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

}  // namespace

std::int32_t DeleteRemote(engine::Session& session, const std::wstring& list_file) {
  engine::ScopedExchangeFolder owner(engine::MakeExchangeFolder(session.UserFolder()));
  const std::wstring& folder = owner.path();
  if (folder.empty()) {
    foundation::Trace(L"API_DELETE_REMOTE_FILE :: exchange folder could not be created");
    return -1;
  }
  if (list_file.empty() || !FileExists(list_file)) {
    foundation::Trace(L"API_DELETE_REMOTE_FILE :: no list of items at '" + list_file + L"'");
    return -1;
  }
  if (!foundation::CopyFileReplacing(list_file, JoinPath(folder, L"InputDelete.txt"))) {
    foundation::Trace(L"API_DELETE_REMOTE_FILE :: the list could not be copied: " + list_file);
  }

  engine::EngineCallSetup setup;
  setup.program = engine::FixedEngineProgram();
  setup.command = engine::kCodeDelete;
  setup.folder = folder;
  setup.poll_result = true;
  auto outcome = engine::RunWithRetry(
      // The listing's codes again after 2000 ms, four attempts.
      ServerRetryPolicy(4, 2000),
      [&](const engine::EngineResult&) -> std::optional<engine::EngineResult> {
        engine::EngineResult result = engine::CallEngine(setup, [&](const std::wstring& into) {
          // Result files of an earlier attempt must not pass for this one's.
          engine::DeleteExchangeFiles(into);
          session.connection().WriteRequest(
              into, engine::ProxyArguments(session.proxy(), engine::RandomNumberForRequest()));
        });
        if (!result.read) return std::nullopt;
        return result;
      });
  if (outcome.stop == engine::RetryStop::kRenewalRefused) {
    foundation::DeleteFolderTree(folder);
    return Raw(EngineCode::kRenewalRefused);
  }
  foundation::DeleteFolderTree(folder);
  HideDeletingWindow(session.configuration());
  if (outcome.stop == engine::RetryStop::kAborted) {
    foundation::Trace(L"API_DELETE_REMOTE_FILE :: the engine left no result");
    return -1;
  }
  return ReportDeleteOutcome(session.configuration(), outcome.last.raw());
}

std::int32_t ProbeFirewall(const std::wstring& known_address) {
  std::int32_t result = 0;
  const std::wstring base_path = foundation::ComputeWorkRoot();
  const engine::Session session = engine::Session::OpenConfiguration();
  const auto& settings = session.configuration();
  const std::wstring marker = base_path + settings.installation_name + L"Client.txt";
  if (FileExists(marker)) return 0;

  // Not the profile's values: only the address the caller holds, and only "localhost" survives.
  engine::Connection client;
  client.SetServerAddress(known_address);
  client.ResolveServerAddress();
  std::wstring folder = MakeFirewallFolder(base_path);
  if (folder.empty()) {
    foundation::Trace(L"API_FirewallSettings :: iTemp folder could not be created");
    return 0;
  }
  const std::wstring request = JoinPath(folder, L"DLLInput.txt");
  foundation::DeleteFileIfExists(request);
  // Placeholder credentials: the probe must never carry the user's own.
  std::vector<std::wstring> lines = {client.server_address(),
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
  engine::EngineCallSetup setup;
  setup.program = engine::FixedEngineProgram();
  setup.command = engine::kCodeLogin;
  setup.folder = folder;
  engine::StartEngineCall(setup, nullptr);
  if (FileExists(marker)) {
    foundation::DeleteFileIfExists(marker);
    result = 1;
  }
  return result;
}

}  // namespace tavrine::operations
