// The reference compare program. Scripted mode (compare-scenario.txt beside
// the program) plays queued answers for the tests; without a scenario it
// compares the request's local items against the remote listing.
#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "compare_os.h"
#include "compare_text.h"
#include "tool_files.h"

namespace tavrine::refcompare {

namespace {

namespace fs = std::filesystem;

constexpr char kScenarioName[] = "compare-scenario.txt";
constexpr char kJournalName[] = "compare-journal.txt";
constexpr char kHeartbeatName[] = "compare-heartbeat.txt";

enum class ActionKind { kResult, kText, kCompare, kDelay, kHang, kCrash, kExit };
struct Action {
  Action(ActionKind k, std::string file = {}, std::string line = {})
      : kind(k), target(std::move(file)), text(std::move(line)) {}
  ActionKind kind;
  std::string target;
  std::string text;
  long long number = 0;
};
using Answer = std::vector<Action>;

using reftools::ReadWholeFile;
using reftools::WriteWholeFile;

std::optional<long long> Number(const std::string& text) {
  try {
    std::size_t used = 0;
    long long value = std::stoll(text, &used);
    if (used == text.size()) return value;
  } catch (...) {
  }
  return std::nullopt;
}

// Answers in order; "then" opens the next one.
std::vector<Answer> ParseScenario(const std::string& text, std::string* error) {
  std::vector<Answer> answers(1);
  int number = 0;
  for (const std::string& raw : SplitLines(text)) {
    ++number;
    std::string line = Trim(raw);
    if (line.empty() || line[0] == '#') continue;
    std::size_t blank = line.find(' ');
    std::string word = line.substr(0, blank);
    std::string rest = blank == std::string::npos ? "" : Trim(line.substr(blank + 1));
    std::optional<Action> action;
    if (word == "then") {
      answers.emplace_back();
      continue;
    } else if (word == "result") {
      action = Action{ActionKind::kResult, "DLLOutput1.txt", rest};
    } else if (word == "text" && !rest.empty()) {
      std::size_t gap = rest.find(' ');
      action = Action{ActionKind::kText, rest.substr(0, gap),
                      gap == std::string::npos ? "" : rest.substr(gap + 1)};
    } else if (word == "compare" && rest.empty()) {
      action = Action{ActionKind::kCompare};
    } else if (word == "hang" && rest.empty()) {
      action = Action{ActionKind::kHang};
    } else if (word == "crash" && rest.empty()) {
      action = Action{ActionKind::kCrash};
    } else if ((word == "delay" || word == "exit") && Number(rest)) {
      action = Action{word == "delay" ? ActionKind::kDelay : ActionKind::kExit};
      action->number = *Number(rest);
    }
    if (!action) {
      *error = "line " + std::to_string(number) + ": unknown action '" + line + "'";
      return {};
    }
    answers.back().push_back(*action);
  }
  return answers;
}

void AppendTrace(const fs::path& home, const std::string& line) {
  std::error_code ec;
  fs::create_directories(home / "Log", ec);
  WriteWholeFile(home / "Log" / "CompareListTrace.txt", line + "\r\n", true);
}

struct CompareLists {
  std::vector<std::string> to_backup;
  std::vector<std::string> not_to_backup;
};

// New when the listing has no entry of the same path; changed when the size
// or the last-write time (UTC, to the second) differs from the entry.
void Consider(const std::string& local, const std::map<std::string, RemoteEntry>& listing,
              CompareLists* lists) {
  std::error_code ec;
  fs::path path = PathFromUtf8(local);
  if (!fs::is_regular_file(path, ec)) {
    lists->not_to_backup.push_back(local);
    return;
  }
  auto entry = listing.find(AsciiLower(RemoteForm(local)));
  if (entry == listing.end()) {
    lists->to_backup.push_back(local);
    return;
  }
  auto size = fs::file_size(path, ec);
  auto written = fs::last_write_time(path, ec);
  std::string date = ec ? "" : FormatDate(std::chrono::floor<std::chrono::seconds>(
                                   std::chrono::file_clock::to_sys(written)));
  bool same = !ec && static_cast<long long>(size) == entry->second.size && date == entry->second.date;
  (same ? lists->not_to_backup : lists->to_backup).push_back(local);
}

void ConsiderFolder(const std::string& local, const std::map<std::string, RemoteEntry>& listing,
                    CompareLists* lists) {
  std::error_code ec;
  fs::path root = PathFromUtf8(local);
  if (!fs::is_directory(root, ec)) {
    lists->not_to_backup.push_back(local);
    return;
  }
  std::vector<std::string> files;
  for (fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, ec),
       end;
       !ec && it != end; it.increment(ec)) {
    if (it->is_regular_file(ec)) files.push_back(Utf8FromPath(it->path()));
  }
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) Consider(file, listing, lists);
}

// Writes ToBackup.txt, notToBackup.txt and DLLOutput1.txt (1: items to
// upload, 0: nothing new or changed, -1: no readable request).
void Compare(const fs::path& folder, const fs::path& home) {
  std::optional<std::string> request = ReadWholeFile(folder / "DLLInput.txt");
  if (!request) {
    AppendTrace(home, "no request in " + Utf8FromPath(folder));
    WriteWholeFile(folder / "DLLOutput1.txt", "-1\r\n");
    return;
  }
  std::string listing_text = DecodeTextFile(ReadWholeFile(folder / "Backupfile.txt").value_or(""));
  std::map<std::string, RemoteEntry> listing = ParseListing(listing_text);
  std::vector<std::string> lines = SplitLines(DecodeTextFile(*request));
  CompareLists lists;
  for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
    const std::string kind = Trim(lines[i + 1]);
    if (kind == "1") {
      ConsiderFolder(lines[i], listing, &lists);
    } else if (kind == "0") {
      Consider(lines[i], listing, &lists);
    } else {
      AppendTrace(home, "item kind '" + kind + "' not understood for " + lines[i]);
    }
  }
  if (lines.size() % 2 != 0) AppendTrace(home, "last request line has no kind; ignored");
  WriteWholeFile(folder / "ToBackup.txt", EncodeUtf16Lines(lists.to_backup));
  WriteWholeFile(folder / "notToBackup.txt", EncodeUtf16Lines(lists.not_to_backup));
  WriteWholeFile(folder / "DLLOutput1.txt", lists.to_backup.empty() ? "0\r\n" : "1\r\n");
  AppendTrace(home, std::to_string(lists.to_backup.size()) + " to back up, " +
                        std::to_string(lists.not_to_backup.size()) + " not");
}

int Play(const Answer& answer, const fs::path& folder, const fs::path& home) {
  std::vector<std::string> written;
  for (const Action& action : answer) {
    switch (action.kind) {
      case ActionKind::kResult:
      case ActionKind::kText: {
        bool append = std::find(written.begin(), written.end(), action.target) != written.end();
        WriteWholeFile(folder / PathFromUtf8(action.target), action.text + "\r\n", append);
        written.push_back(action.target);
        break;
      }
      case ActionKind::kCompare:
        Compare(folder, home);
        break;
      case ActionKind::kDelay:
        std::this_thread::sleep_for(std::chrono::milliseconds(action.number));
        break;
      case ActionKind::kHang:
        // The heartbeat shows a test whether the program is still alive.
        for (;;) {
          WriteWholeFile(folder / kHeartbeatName, ".", true);
          std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
      case ActionKind::kCrash:
        ExitAbnormally();
      case ActionKind::kExit:
        return static_cast<int>(action.number);
    }
  }
  return 0;
}

}  // namespace

int RunCompareProgram(const std::string& parameter_text) {
  const fs::path home = ProgramPath().parent_path();
  const std::optional<Invocation> invocation = ParseParameters(parameter_text);
  const std::optional<std::string> scenario_text = ReadWholeFile(home / kScenarioName);
  const std::string journal = ReadWholeFile(home / kJournalName).value_or("");
  const std::size_t run = static_cast<std::size_t>(std::count(journal.begin(), journal.end(), '\n'));

  std::string note;
  std::vector<Answer> answers;
  if (!invocation) {
    note = "parameters not understood";
  } else if (invocation->mode != "1" && invocation->mode != "") {
    note = "mode not understood";
  } else if (scenario_text) {
    answers = ParseScenario(*scenario_text, &note);
    if (!note.empty()) note = std::string(kScenarioName) + " " + note;
  }
  const fs::path folder = invocation ? PathFromUtf8(invocation->folder) : fs::path();
  std::optional<std::string> request;
  if (invocation) request = ReadWholeFile(folder / "DLLInput.txt");

  // Journaled before playing, so hanging and crashing runs are on record too.
  std::string line = "run=" + std::to_string(run) +
                     "\tfolder=" + EscapeField(invocation ? invocation->folder : "") +
                     "\tmode=" + EscapeField(invocation ? invocation->mode : "") +
                     "\tparams=" + EscapeField(parameter_text) +
                     "\tDLLInput.txt=" + (request ? HexBytes(*request) : "-") +
                     "\tnote=" + EscapeField(note) + "\n";
  WriteWholeFile(home / kJournalName, line, true);

  if (!note.empty()) return note.rfind(kScenarioName, 0) == 0 ? 4 : 2;
  if (!scenario_text) {
    Compare(folder, home);
    return 0;
  }
  // The n-th run plays answer n; the last answer repeats.
  return Play(answers[std::min(run, answers.size() - 1)], folder, home);
}

}  // namespace tavrine::refcompare
