#pragma once
// The retry policies the remote operations share.
#include <cstdint>

#include "engine/engine_call.h"
#include "engine/session.h"

namespace tavrine::operations {

// The listing's and the delete's: their retry codes after `pause_ms`, and -505
// renewing the random number (then 500 ms) when the login permitted it.
engine::RetryPolicy ServerRetryPolicy(int attempts, std::uint32_t pause_ms);

// The quota's and the versions': -416 again after `busy_pause_ms`; -504 after
// a silent login and 100 ms, with the session read afresh.
engine::RetryPolicy ReconnectingPolicy(int attempts, std::uint32_t busy_pause_ms,
                                       engine::Session& session);

}  // namespace tavrine::operations
