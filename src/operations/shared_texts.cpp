#include "operations/shared_texts.h"

#include "engine/engine_codes.h"
#include "foundation/configuration.h"
#include "foundation/language_text.h"
#include "foundation/message_table.h"
#include "foundation/shared_state.h"
#include "foundation/text_util.h"
#include "platform/services.h"

namespace tavrine::operations {

namespace {

constexpr int kConnectionFailureTextNumber = 683;

std::wstring TextOr(std::optional<std::wstring> text, const wchar_t* fallback) {
  return text && !foundation::Trim(*text).empty() ? *text : std::wstring(fallback);
}

void ShowFailureBox(const std::wstring& text, const foundation::Configuration& configuration) {
  platform::CurrentUi().ShowMessageBox(text, configuration.failure_title,
                                       platform::kMbOk | platform::kMbIconStop);
}

}  // namespace

void PreloadFailureTexts() {
  auto& settings = foundation::ThreadState();
  settings.last_error_text = kConnectionFailureText;
  settings.password_changed_text = kPasswordChangedText;
}

void PreloadFailureTextsFromMessageTable() {
  auto& settings = foundation::ThreadState();
  settings.last_error_text =
      TextOr(foundation::MessageText(Raw(engine::EngineCode::kNoConnection)), kConnectionFailureText);
  settings.password_changed_text = TextOr(
      foundation::MessageText(Raw(engine::EngineCode::kPasswordChanged)), kPasswordChangedText);
}

bool IsListingRetryCode(std::int32_t code) { return engine::IsIn(code, engine::codes::kListingRetry); }

std::wstring ConnectionFailureText() {
  std::wstring text = foundation::Trim(foundation::LanguageText(kConnectionFailureTextNumber));
  return text.empty() ? std::wstring(kConnectionFailureText) : text;
}

void PresetConnectionFailureText() {
  foundation::ThreadState().last_error_text = ConnectionFailureText();
}

void ShowListingFailure(std::int32_t result, const foundation::Configuration& configuration) {
  PresetConnectionFailureText();
  const auto& settings = foundation::ThreadState();
  if (IsListingRetryCode(result) || result == engine::EngineCode::kDatabaseError) {
    ShowFailureBox(settings.last_error_text, configuration);
  } else if (engine::IsIn(result, engine::codes::kListingOwnText)) {
    ShowFailureBox(foundation::MessageText(result).value_or(L""), configuration);
  }
}

}  // namespace tavrine::operations
