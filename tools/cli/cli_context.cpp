#include "cli_context.h"

#include <algorithm>
#include <iostream>

#include "format.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/message_table.h"
#include "platform/console.h"
#include "platform/path.h"
#include "profile/profile_store.h"

namespace tavrine::cli {

Arguments::Arguments(std::vector<std::string> words, std::vector<std::string> value_options) {
  auto takes_value = [&](const std::string& option) {
    for (const auto& known : value_options)
      if (known == option) return true;
    return false;
  };
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word.rfind("--", 0) != 0 || word == "--") {
      positional_.push_back(word);
      continue;
    }
    std::string option = word.substr(2), value;
    if (std::size_t equals = option.find('='); equals != std::string::npos) {
      value = option.substr(equals + 1);
      option.erase(equals);
    } else if (takes_value(option)) {
      if (i + 1 >= words.size()) {
        error_ = "--" + option + " needs a value";
        return;
      }
      value = words[++i];
    }
    options_[option] = value;
  }
}

std::optional<std::string> Arguments::Value(const std::string& option) const {
  auto it = options_.find(option);
  if (it == options_.end()) return std::nullopt;
  return it->second;
}

int ConsoleUi::ShowMessageBox(const std::wstring& text, const std::wstring& title, unsigned) {
  EndProgress();
  std::cerr << "[" << Utf8(title) << "] " << Utf8(text) << "\n";
  return 1;
}

namespace {
bool progress_shown = false;
}

void Progress(const std::string& text) {
  if (!platform::StderrIsTerminal()) return;
  std::cerr << "\r" << PadRight(text, 60) << std::flush;
  progress_shown = true;
}

void EndProgress() {
  if (!progress_shown) return;
  std::cerr << "\r" << std::string(60, ' ') << "\r" << std::flush;
  progress_shown = false;
}

std::unique_ptr<platform::RunningProcess> EngineStartWatch::Start(const std::wstring& program,
                                                                  const std::wstring& parameters,
                                                                  const std::wstring& working_folder) {
  auto process = platform::SystemProcessLauncher().Start(program, parameters, working_folder);
  if (!process && std::find(not_started_.begin(), not_started_.end(), program) == not_started_.end()) {
    not_started_.push_back(program);
  }
  return process;
}

EngineStartWatch& EngineStarts() {
  static EngineStartWatch watch;
  return watch;
}

bool ReportEngineNotStarted() {
  const auto& programs = EngineStarts().not_started();
  if (programs.empty()) return false;
  EndProgress();
  for (const std::wstring& program : programs) {
    const std::size_t separator = program.find_last_of(platform::kPathSeparator);
    const std::wstring folder = separator == std::wstring::npos ? L"." : program.substr(0, separator);
    const std::wstring name = separator == std::wstring::npos ? program : program.substr(separator + 1);
    std::cerr << "error: the engine program " << Utf8(name) << " could not be started: ";
    if (foundation::FileExists(program)) {
      std::cerr << Utf8(program) << " is there but did not run\n";
    } else {
      std::cerr << "it is not in " << Utf8(folder) << " (looked for " << Utf8(program) << ")\n";
    }
  }
  return true;
}

int Fail(const std::string& what, long code) {
  if (ReportEngineNotStarted()) return kExitFailed;
  EndProgress();
  std::cerr << "error: " << what;
  if (auto text = foundation::MessageText(static_cast<int>(code))) {
    std::cerr << ": " << Utf8(*text) << " (" << code << ")";
  } else {
    std::cerr << " (code " << code << ")";
  }
  std::cerr << "\n";
  return kExitFailed;
}

bool RequireSession() {
  if (!foundation::LoadConfigurations()) {
    std::cerr << "error: no complete Configuration.ini beside the library\n";
    return false;
  }
  if (profile::CurrentUserName().empty()) {
    std::cerr << "error: nobody is logged in; run 'tavrine login USER' first\n";
    return false;
  }
  return true;
}

}  // namespace tavrine::cli
