#pragma once
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrine::refengine {

enum class ActionKind {
  kWrite,  // a whole file: output, info, bytes, copy, or one more line with text
  kDelay,
  kHang,
  kCrash,
  kExit,
};

struct Action {
  ActionKind kind = ActionKind::kExit;
  std::string target;       // file in the exchange folder
  std::string bytes;        // content, for inline writes
  std::string copy_source;  // file beside the scenario, for copy
  bool append_line = false; // text: adds to what this run already wrote to the target
  bool half = false;        // write the first half, then crash
  long long number = 0;     // delay ms, exit code
};

using Answer = std::vector<Action>;

struct Scenario {
  std::map<long long, std::vector<Answer>> queues;
};

struct ParseResult {
  Scenario scenario;
  std::string error;  // "line N: ..." when the text is not a valid scenario
};

ParseResult ParseScenario(std::string_view text);

// Answer for the run that follows `earlier_runs` runs of the same code: the
// queue in order, then its last answer again and again.
const Answer* PickAnswer(const Scenario& scenario, long long code, std::size_t earlier_runs,
                         std::size_t* index);

// What the library passes: optional blanks, the decimal code, "<", the folder up
// to the last ">".
struct Invocation {
  long long code = 0;
  std::string code_text;
  std::string folder;
};
std::optional<Invocation> ParseParameters(std::string_view text);

}  // namespace tavrine::refengine
