#include "engine/engine_call.h"

#include "engine/result_file.h"
#include "foundation/text_util.h"
#include "platform/services.h"

namespace tavrine::engine {

namespace {

// After the engine has ended, its result file may still be on its way.
constexpr std::uint32_t kResultPollMs = 100;
constexpr std::uint32_t kResultPollLimitMs = 10000;

RunEnd Wait(const EngineCallSpec& spec, platform::RunningProcess* process) {
  switch (spec.wait) {
    case WaitKind::kPausing:
      return WaitPausing(process, spec.pause_ms);
    case WaitKind::kPumping:
      return WaitPumping(process, spec.pause_ms);
    case WaitKind::kCancellable:
      return WaitCancellable(process, spec.cancel_marker);
    case WaitKind::kPlain:
      break;
  }
  return WaitPlain(process);
}

bool PollForResult(const std::wstring& folder) {
  for (std::uint32_t waited = 0; !ResultFilePresent(folder) && waited < kResultPollLimitMs;
       waited += kResultPollMs) {
    platform::CurrentClock().Sleep(kResultPollMs);
  }
  return ResultFilePresent(folder);
}

const RetryRule* RuleFor(const RetryPolicy& policy, std::int32_t code) {
  for (const RetryRule& rule : policy.rules)
    if (IsIn(code, rule.codes)) return &rule;
  return nullptr;
}

void PauseBetween(const RetryRule& rule, bool last) {
  if (rule.before_pause) rule.before_pause();
  if (!last || rule.pause_after_last) {
    auto& ui = platform::CurrentUi();
    if (rule.pump_around_pause) ui.PumpMessages();
    if (rule.pause_ms > 0) platform::CurrentClock().Sleep(rule.pause_ms);
    if (rule.pump_around_pause) ui.PumpMessages();
  }
  if (rule.after_pause) rule.after_pause();
}

}  // namespace

std::int32_t EngineResult::raw() const { return foundation::RoundToInt32(value); }

std::unique_ptr<platform::RunningProcess> StartEngineCall(const EngineCallSpec& spec,
                                                          const RequestWrite& write_request) {
  if (write_request) write_request(spec.folder);
  return StartEngine(spec.program, spec.command, spec.folder);
}

EngineResult CallEngine(const EngineCallSpec& spec, const RequestWrite& write_request,
                        EngineResult previous) {
  EngineResult result = std::move(previous);
  result.answered = false;
  result.read = false;
  auto process = StartEngineCall(spec, write_request);
  result.end = Wait(spec, process.get());
  if (result.end == RunEnd::kNotStarted && !spec.read_without_start) return result;
  if (spec.poll_result && (result.end != RunEnd::kExited || !PollForResult(spec.folder)))
    return result;
  result.read = true;
  ResultFile file = ReadResultFile(spec.folder);
  result.answered = file.answered;
  if (file.value) result.value = *file.value;
  if (file.description) result.description = *file.description;
  return result;
}

RetryOutcome RunWithRetry(const RetryPolicy& policy, const Attempt& attempt) {
  RetryOutcome outcome;
  while (outcome.attempts < policy.attempts) {
    std::optional<EngineResult> result = attempt(outcome.last);
    if (!result) {
      outcome.stop = RetryStop::kAborted;
      return outcome;
    }
    outcome.last = std::move(*result);
    ++outcome.attempts;
    const bool last = outcome.attempts >= policy.attempts;
    const std::int32_t code = outcome.last.raw();
    if (const RetryRule* rule = RuleFor(policy, code)) {
      PauseBetween(*rule, last);
      continue;
    }
    if (policy.renew && code == EngineCode::kMachineNotRegistered) {
      if (!policy.renewal_permitted) {
        outcome.stop = RetryStop::kRenewalRefused;
        return outcome;
      }
      policy.renew();
      platform::CurrentClock().Sleep(policy.renew_pause_ms);
      continue;
    }
    outcome.stop = RetryStop::kAnswered;
    return outcome;
  }
  outcome.stop = RetryStop::kBudgetSpent;
  return outcome;
}

}  // namespace tavrine::engine
