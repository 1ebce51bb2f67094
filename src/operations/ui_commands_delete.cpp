#include "operations/remote_operations.h"
#include "operations/ui_commands.h"

#include "foundation/trace_log.h"

namespace tavrine::operations {

std::int32_t UICommands::W_DeleteRemoteFiles(const std::wstring& sInputDelete) {
  try {
    engine::Session session = engine::Session::Open();
    return DeleteRemote(session, sInputDelete);
  } catch (...) {
    foundation::TraceException(L"W_DeleteRemoteFiles", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t UICommands::W_Dummycall() {
  try {
    return ProbeFirewall(L"");
  } catch (...) {
    foundation::TraceException(L"W_Dummycall", foundation::DescribeCurrentException());
    return -1;
  }
}

}  // namespace tavrine::operations
