#pragma once
// The one place a contract method traps what the core throws. Written as the
// handler of a function-try-block, so the method body stays plain:
//
//   std::int32_t clsAPI_Interface::API_REMOTE(const std::wstring& strtempfd) try {
//     return ListRemote(session, strtempfd);
//   } TAVRINE_CATCH_RETURN(L"API_REMOTE", -1)
//
// The trace line is "[EXCEPTION] <method>() : <description>" (or with
// "<class> :: " in front), the line the caller's log has always shown.
#include "foundation/trace_log.h"

#define TAVRINE_CATCH_RETURN(method, result)                                                \
  catch (...) {                                                                             \
    ::tavrine::foundation::TraceException(method,                                           \
                                          ::tavrine::foundation::DescribeCurrentException()); \
    return result;                                                                          \
  }

#define TAVRINE_CATCH_RETURN_IN(class_name, method, result)                                      \
  catch (...) {                                                                                  \
    ::tavrine::foundation::TraceException(class_name, method,                                    \
                                          ::tavrine::foundation::DescribeCurrentException());    \
    return result;                                                                               \
  }

// For methods without a result.
#define TAVRINE_CATCH_LOG(method)                                                            \
  catch (...) {                                                                              \
    ::tavrine::foundation::TraceException(method,                                            \
                                          ::tavrine::foundation::DescribeCurrentException()); \
  }

#define TAVRINE_CATCH_LOG_IN(class_name, method)                                                 \
  catch (...) {                                                                                  \
    ::tavrine::foundation::TraceException(class_name, method,                                    \
                                          ::tavrine::foundation::DescribeCurrentException());    \
  }
