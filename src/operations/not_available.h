#pragma once
#include <string>

#include "foundation/trace_log.h"

namespace tavrine::operations {

// Methods whose behaviour has not been built yet answer with their failure
// value and say so in the trace log.
inline void TraceNotAvailable(const wchar_t* method) {
  foundation::Trace(std::wstring(method) + L" : not available");
}

}  // namespace tavrine::operations
