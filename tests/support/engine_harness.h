#pragma once
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/process.h"
#include "platform/services.h"
#include "support/temp_folder.h"

namespace tavrine::testing {

std::string Hex(std::string_view bytes);  // lower-case, as the journals write bytes

// Polls until `done` holds or `limit_ms` pass; returns `done()`.
template <class Done>
bool WaitUntil(Done done, int limit_ms = 10000) {
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(limit_ms);
  while (!done()) {
    if (std::chrono::steady_clock::now() >= deadline) return done();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

// Builds the reference engine's engine-scenario.txt (format: tools/engine/README.md).
//   scenario.On(115).Output(-416).Then().Output(0).WithFile("Backupfile.txt", bytes);
// Calls add actions to the open answer, in the order the engine plays them.
class EngineScenario {
 public:
  // Selects the queue of `code`; the first time, opens its first answer.
  EngineScenario& On(int code);
  // Opens the next answer of the selected code. A code's last answer repeats.
  EngineScenario& Then();

  // DLLOutput.txt "value\r\n".
  EngineScenario& Output(long long value) { return Add("output " + std::to_string(value)); }
  // DLLOutputInfo.txt "code\r\n", then the description line if there is one.
  EngineScenario& Info(long long code) { return Add("info " + std::to_string(code)); }
  EngineScenario& Info(long long code, std::string_view description) {
    return Add("info " + std::to_string(code) + " " + std::string(description));
  }
  // A file of exactly these bytes in the exchange folder (garbage included).
  EngineScenario& WithFile(std::string_view name, std::string_view bytes) {
    return Add("bytes " + std::string(name) + " " + Hex(bytes));
  }
  EngineScenario& Delay(unsigned ms) { return Add("delay " + std::to_string(ms)); }
  EngineScenario& Hang() { return Add("hang"); }    // until killed
  EngineScenario& Crash() { return Add("crash"); }  // abnormal exit, nothing more written
  // Writes the first half of these bytes, then crashes.
  EngineScenario& CrashHalfway(std::string_view name, std::string_view bytes) {
    return Add("half bytes " + std::string(name) + " " + Hex(bytes));
  }
  EngineScenario& Exit(int exit_code) { return Add("exit " + std::to_string(exit_code)); }

  std::string Text() const;

 private:
  EngineScenario& Add(std::string line);

  std::vector<std::pair<int, std::vector<std::vector<std::string>>>> queues_;
  std::size_t current_ = 0;
};

// One line of the engine's journal.
struct EngineRun {
  std::optional<int> code;            // nullopt when the parameters were not understood
  std::optional<std::size_t> answer;  // index in the code's queue; nullopt when none was played
  std::wstring program;               // file name the engine was started as
  std::wstring folder;                // exchange folder from the parameters
  std::wstring cwd;
  std::wstring params;                // the whole parameter text
  std::wstring note;                  // the engine's complaint, if any
  // Bytes of the exchange folder's files at the engine's start; nullopt when absent.
  std::optional<std::string> request;  // DLLInput.txt
  std::optional<std::string> restdestdir;
  std::optional<std::string> input_delete;
  std::optional<std::string> mpc_ini;
};

struct EngineInstallOptions {
  // Subfolder of the temp folder to install into (spaces, non-ASCII); empty: the temp folder.
  std::wstring folder_name{};
  // More names for the engine, e.g. L"TavrinEClsClient.exe" for ExeGroup "TavrinE".
  std::vector<std::wstring> aliases{};
  std::optional<std::string> configuration_ini{};  // bytes of Configuration.ini
};

// The engine in "install dir" under both of its names, with StandardConfiguration()
// and a 20 s engine time-out.
EngineInstallOptions StandardEngineInstall();

// Line `number` (from 1) of the run's UTF-16LE request; "<no request>" without one.
std::wstring RequestLine(const EngineRun& run, int number);

// The journals of the reference programs: a line a run of tab-separated
// key=value fields, texts %-escaped UTF-8, file bytes in hex or "-".
using JournalLine = std::map<std::string, std::string, std::less<>>;
std::vector<JournalLine> ReadJournal(const std::filesystem::path& file);  // none when absent
std::wstring JournalText(const JournalLine& line, std::string_view key);
std::optional<std::string> JournalBytes(const JournalLine& line, std::string_view key);

// A throw-away install folder holding the reference engine. While alive it is
// the library's module folder on this thread.
class EngineInstall {
 public:
  explicit EngineInstall(const EngineInstallOptions& options = {});
  EngineInstall(const EngineInstall&) = delete;
  EngineInstall& operator=(const EngineInstall&) = delete;

  // As the library sees its module folder: no trailing separator.
  const std::wstring& folder() const { return folder_text_; }
  const std::filesystem::path& path() const { return path_; }
  // folder() + separator + name, as the library builds the program path.
  std::wstring Program(std::wstring_view name = L"TavrinEClient.exe") const;
  // Starts the engine (or an alias) in the install folder, as the library does.
  using Process = std::unique_ptr<platform::RunningProcess>;
  Process Start(const std::wstring& parameters,
                std::wstring_view name = L"TavrinEClient.exe") const;
  // Start() and wait for the end; a run still going after 30 s is killed.
  platform::WaitOutcome Run(const std::wstring& parameters,
                            std::wstring_view name = L"TavrinEClient.exe") const;

  void SetScenario(const EngineScenario& scenario) const;
  // SetScenario() after clearing the journal: the answer queues start again.
  void Restart(const EngineScenario& scenario) const;
  // A file beside the engine (copy sources, ini files).
  void WriteFile(std::wstring_view name, std::string_view bytes) const;

  // Every run so far, oldest first.
  std::vector<EngineRun> Journal() const;
  // The code of every run so far; -1 where the parameters were not understood.
  std::vector<int> Codes() const;

 private:
  TempFolder temp_;
  std::filesystem::path path_;
  std::wstring folder_text_;
  std::optional<platform::ScopedServices> services_;
};

}  // namespace tavrine::testing
