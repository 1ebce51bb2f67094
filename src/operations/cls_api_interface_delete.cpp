#include "operations/cls_api_interface.h"
#include "operations/not_available.h"

namespace tavrine::operations {

std::int32_t clsAPI_Interface::API_DELETE_REMOTE_FILE(const std::wstring&) {
  TraceNotAvailable(L"API_DELETE_REMOTE_FILE");
  return -1;
}

std::int32_t clsAPI_Interface::API_FirewallSettings() {
  TraceNotAvailable(L"API_FirewallSettings");
  return -1;
}

}  // namespace tavrine::operations
