#include "operations/retry_policies.h"

#include "engine/engine_codes.h"
#include "foundation/shared_state.h"
#include "operations/remote_operations.h"

namespace tavrine::operations {

namespace {

constexpr engine::EngineCode kBusy[] = {engine::EngineCode::kNoConnection};
constexpr engine::EngineCode kLoginAgain[] = {engine::EngineCode::kReconnect};
constexpr std::uint32_t kReconnectPauseMs = 100;

}  // namespace

engine::RetryPolicy ServerRetryPolicy(int attempts, std::uint32_t pause_ms) {
  engine::RetryPolicy policy;
  policy.attempts = attempts;
  policy.rules.push_back({.codes = engine::codes::kListingRetry, .pause_ms = pause_ms});
  policy.renew = [] { RenewRandomNumber(); };
  policy.renewal_permitted = foundation::ThreadState().renew_random_permitted;
  return policy;
}

engine::RetryPolicy ReconnectingPolicy(int attempts, std::uint32_t busy_pause_ms,
                                       engine::Session& session) {
  engine::RetryPolicy policy;
  policy.attempts = attempts;
  policy.rules.push_back({.codes = kBusy, .pause_ms = busy_pause_ms});
  policy.rules.push_back({.codes = kLoginAgain,
                          .pause_ms = kReconnectPauseMs,
                          .before_pause = [] { Reconnect(); },
                          .after_pause = [&session] { session.Reload(); }});
  return policy;
}

}  // namespace tavrine::operations
