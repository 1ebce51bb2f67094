#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/process.h"
#include "platform/ui.h"

namespace tavrine::cli {

// Exit codes scripts can rely on.
inline constexpr int kExitOk = 0;
inline constexpr int kExitUsage = 1;
inline constexpr int kExitFailed = 2;
inline constexpr int kExitNotReady = 3;  // no configuration, or nobody logged in

// The words after the command: positional arguments and --options.
class Arguments {
 public:
  Arguments(std::vector<std::string> words, std::vector<std::string> value_options);

  const std::vector<std::string>& positional() const { return positional_; }
  bool Has(const std::string& option) const { return options_.count(option) != 0; }
  std::optional<std::string> Value(const std::string& option) const;
  // An option the command does not know, or one that lacks its value.
  const std::optional<std::string>& error() const { return error_; }

 private:
  std::vector<std::string> positional_;
  std::map<std::string, std::string> options_;
  std::optional<std::string> error_;
};

// Message boxes become lines on standard error; nobody is there to click.
class ConsoleUi : public platform::Ui {
 public:
  int ShowMessageBox(const std::wstring& text, const std::wstring& title, unsigned style) override;
  bool CloseWindowByTitle(const std::wstring&) override { return false; }
  bool HideWindowByTitle(const std::wstring&) override { return false; }
  void PumpMessages() override {}
};

// Starts programs through the system's launcher and remembers those that
// would not start, so that a failure can name its cause.
class EngineStartWatch : public platform::ProcessLauncher {
 public:
  std::unique_ptr<platform::RunningProcess> Start(const std::wstring& program, const std::wstring& parameters,
                                                  const std::wstring& working_folder) override;
  // Each program once, in the order they failed.
  const std::vector<std::wstring>& not_started() const { return not_started_; }

 private:
  std::vector<std::wstring> not_started_;
};

// The watch that main installs for the run.
EngineStartWatch& EngineStarts();

// For each engine program that could not be started, "error: ..." naming the
// program and where it was looked for; true when it said so.
bool ReportEngineNotStarted();

// Progress on standard error, overwritten by the next line.
void Progress(const std::string& text);
void EndProgress();

// "error: <what>" and the message table's text for the code, when it has one;
// an engine program that could not be started is named instead.
int Fail(const std::string& what, long code);

// The configuration must load and somebody must be logged in.
bool RequireSession();

}  // namespace tavrine::cli
