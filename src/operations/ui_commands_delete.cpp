#include "operations/cls_api_interface.h"
#include "operations/ui_commands.h"

#include "foundation/trace_log.h"

namespace tavrine::operations {

std::int32_t UICommands::W_DeleteRemoteFiles(const std::wstring& sInputDelete) {
  try {
    return clsAPI_Interface().API_DELETE_REMOTE_FILE(sInputDelete);
  } catch (...) {
    foundation::TraceException(L"W_DeleteRemoteFiles", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t UICommands::W_Dummycall() {
  try {
    return clsAPI_Interface().API_FirewallSettings();
  } catch (...) {
    foundation::TraceException(L"W_Dummycall", foundation::DescribeCurrentException());
    return -1;
  }
}

}  // namespace tavrine::operations
