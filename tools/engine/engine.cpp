// Scripted mode of the reference engine: journal the run, then play the
// scenario's next answer for the command code.
#include <chrono>
#include <fstream>
#include <set>
#include <system_error>
#include <thread>

#include "engine_os.h"
#include "journal.h"
#include "scenario.h"
#include "tool_files.h"
#include "vault_service.h"
#include "vault_text.h"

namespace tavrine::refengine {

namespace {

namespace fs = std::filesystem;

constexpr char kScenarioName[] = "engine-scenario.txt";
constexpr char kJournalName[] = "engine-journal.txt";
// Files the library may have left in the exchange folder for the engine.
constexpr const char* kRequestFiles[] = {"DLLInput.txt", "restdestdir.txt", "InputDelete.txt",
                                         "MPC.ini"};

using reftools::WriteWholeFile;

void AppendJournal(const fs::path& journal, const std::string& line) {
  std::ofstream out(journal, std::ios::binary | std::ios::app);
  out.write(line.data(), static_cast<std::streamsize>(line.size()));
  out.flush();
}

// The bytes each write action will put down, read before the run is journaled
// so that a missing copy source is reported instead of half played.
bool ResolveContents(const Answer& answer, const fs::path& home,
                     std::vector<std::string>* contents, std::string* error) {
  for (const Action& action : answer) {
    if (action.kind == ActionKind::kWrite && !action.copy_source.empty()) {
      std::optional<std::string> bytes = ReadWholeFile(home / PathFromUtf8(action.copy_source));
      if (!bytes) {
        *error = "copy source missing: " + action.copy_source;
        return false;
      }
      contents->push_back(std::move(*bytes));
    } else {
      contents->push_back(action.bytes);
    }
  }
  return true;
}

int Play(const Answer& answer, const std::vector<std::string>& contents, const fs::path& folder) {
  std::set<std::string> written;
  for (std::size_t i = 0; i < answer.size(); ++i) {
    const Action& action = answer[i];
    switch (action.kind) {
      case ActionKind::kWrite: {
        std::string bytes = contents[i];
        if (action.half) bytes.resize(bytes.size() / 2);
        bool append = action.append_line && written.count(action.target) > 0;
        WriteWholeFile(folder / PathFromUtf8(action.target), bytes, append);
        written.insert(action.target);
        if (action.half) ExitAbnormally();
        break;
      }
      case ActionKind::kDelay:
        std::this_thread::sleep_for(std::chrono::milliseconds(action.number));
        break;
      case ActionKind::kHang:
        for (;;) std::this_thread::sleep_for(std::chrono::seconds(1));
      case ActionKind::kCrash:
        ExitAbnormally();
      case ActionKind::kExit:
        return static_cast<int>(action.number);
    }
  }
  return 0;
}

}  // namespace

int RunEngine(const std::string& parameter_text) {
  const fs::path program = ProgramPath();
  const fs::path home = program.parent_path();
  std::error_code ec;

  constexpr std::string_view kMakeSample = "--make-sample-vault ";
  if (std::string_view(parameter_text).substr(0, kMakeSample.size()) == kMakeSample) {
    std::string folder = parameter_text.substr(kMakeSample.size());
    if (folder.size() >= 2 && folder.front() == '"' && folder.back() == '"')
      folder = folder.substr(1, folder.size() - 2);
    return MakeSampleVault(PathFromUtf8(folder));
  }

  JournalRecord record;
  record.answer = "-";
  record.program = Utf8FromPath(program.filename());
  record.cwd = Utf8FromPath(fs::current_path(ec));
  record.params = parameter_text;

  const std::optional<Invocation> invocation = ParseParameters(parameter_text);
  if (!invocation) {
    record.note = "parameters not understood";
    AppendJournal(home / kJournalName, FormatJournalLine(record));
    return 2;
  }
  record.code = std::to_string(invocation->code);
  record.folder = invocation->folder;
  const fs::path folder = PathFromUtf8(invocation->folder);
  for (const char* name : kRequestFiles) record.files.emplace_back(name, ReadWholeFile(folder / name));

  int exit_code = 0;
  const Answer* answer = nullptr;
  std::vector<std::string> contents;
  ParseResult parsed;  // outlives the answer picked from it
  std::optional<std::string> text = ReadWholeFile(home / kScenarioName);
  std::optional<fs::path> vault = text ? std::nullopt : ConfiguredVault(home);
  if (vault) {
    record.note = "vault " + Utf8FromPath(*vault);
    AppendJournal(home / kJournalName, FormatJournalLine(record));
    return AnswerFromVault(*vault, home, invocation->code, folder);
  }
  if (text) {
    parsed = ParseScenario(*text);
    if (!parsed.error.empty()) {
      record.note = std::string(kScenarioName) + " " + parsed.error;
      exit_code = 4;
    } else {
      std::string journal = ReadWholeFile(home / kJournalName).value_or("");
      std::size_t index = 0;
      answer = PickAnswer(parsed.scenario, invocation->code, CountRuns(journal, record.code), &index);
      if (answer) record.answer = std::to_string(index);
      if (answer && !ResolveContents(*answer, home, &contents, &record.note)) {
        answer = nullptr;
        exit_code = 4;
      }
    }
  }
  // Journaled before playing, so hanging and crashing runs are on record too.
  AppendJournal(home / kJournalName, FormatJournalLine(record));
  return answer ? Play(*answer, contents, folder) : exit_code;
}

}  // namespace tavrine::refengine
