#include "operations/cls_api_interface.h"
#include "operations/not_available.h"

namespace tavrine::operations {

std::int32_t clsAPI_Interface::API_ENTRY_RESTORE(const std::wstring&, const std::wstring&,
                                                 const std::wstring&) {
  TraceNotAvailable(L"API_ENTRY_RESTORE");
  return -1;
}

std::int32_t clsAPI_Interface::API_GETVERSIONS(const std::wstring&, std::wstring&) {
  TraceNotAvailable(L"API_GETVERSIONS");
  return -1;
}

}  // namespace tavrine::operations
