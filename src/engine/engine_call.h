#pragma once
// One round trip to the engine: request written, engine started, a bounded
// wait of the operation's kind, the result read. And the retry policy that
// runs such calls again for the codes an operation retries.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine_codes.h"
#include "engine/engine_run.h"
#include "platform/process.h"

namespace tavrine::engine {

enum class WaitKind {
  kPlain,        // 300 ms slices
  kPausing,      // 300 ms slices, a pause after each
  kPumping,      // the same, window messages run before each pause
  kCancellable,  // 1000 ms slices; a cancel marker terminates the engine
};

struct EngineCallSpec {
  std::wstring program = {};
  int command = 0;
  std::wstring folder = {};
  WaitKind wait = WaitKind::kPlain;
  std::uint32_t pause_ms = 0;   // kPausing, kPumping
  std::wstring cancel_marker = {};  // kCancellable
  // After the engine ended, wait (bounded) for its result file to appear;
  // without one (or when the engine did not end by itself) nothing is read.
  bool poll_result = false;
  // Whether the result files are read when the engine could not be started.
  bool read_without_start = true;
};

struct EngineResult {
  RunEnd end = RunEnd::kNotStarted;
  bool read = false;         // the result files were read
  bool answered = false;     // DLLOutput.txt had a line
  std::wstring description;
  double value = 0;

  std::int32_t raw() const;
  bool Is(EngineCode code) const { return raw() == code; }
  bool IsIn(CodeSet set) const { return engine::IsIn(raw(), set); }
};

// Writes the request into the call's folder (and clears what must not pass
// for this run's answer).
using RequestWrite = std::function<void(const std::wstring& folder)>;

// One round trip. `previous` is what the call starts from: a run that leaves
// no result code keeps the value and description of the run before it (pass
// {} for a fresh start). See EngineCallSpec for when nothing is read.
EngineResult CallEngine(const EngineCallSpec& spec, const RequestWrite& write_request,
                        EngineResult previous = {});

// Writes the request and starts the engine without waiting for it; null when
// it could not be started.
std::unique_ptr<platform::RunningProcess> StartEngineCall(const EngineCallSpec& spec,
                                                          const RequestWrite& write_request);

// Codes that run the call again, and what happens between the attempts.
struct RetryRule {
  CodeSet codes = {};
  std::uint32_t pause_ms = 0;
  // False: the pause is skipped after the last attempt of the budget.
  bool pause_after_last = true;
  // Window messages run before and after the pause.
  bool pump_around_pause = false;
  std::function<void()> before_pause = {};  // e.g. log in again
  std::function<void()> after_pause = {};   // e.g. read the configuration again
};

struct RetryPolicy {
  int attempts = 1;
  std::vector<RetryRule> rules;
  // -505 ("Machine not registered"): with `renew` set and renewing permitted,
  // the number is renewed, then a pause and another attempt; not permitted,
  // the attempts stop (RetryStop::kRenewalRefused). Without `renew`, -505 is
  // an answer like any other.
  std::function<void()> renew;
  bool renewal_permitted = false;
  std::uint32_t renew_pause_ms = 500;
};

enum class RetryStop {
  kAnswered,        // a code no rule retries
  kBudgetSpent,     // every attempt was used
  kAborted,         // an attempt gave no result to go on with
  kRenewalRefused,  // -505 while renewing the number is not permitted
};

struct RetryOutcome {
  EngineResult last;  // the last attempt's result (or the one before an abort)
  RetryStop stop = RetryStop::kAnswered;
  int attempts = 0;
};

// One attempt: given the last result, the next one; nullopt stops the attempts.
using Attempt = std::function<std::optional<EngineResult>(const EngineResult& previous)>;

RetryOutcome RunWithRetry(const RetryPolicy& policy, const Attempt& attempt);

}  // namespace tavrine::engine
