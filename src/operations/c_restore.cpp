#include "operations/c_restore.h"

#include <filesystem>

#include "engine/cls_client.h"
#include "engine/exchange_folder.h"
#include "foundation/trace_log.h"
#include "operations/cls_api_interface.h"
#include "platform/path.h"

namespace tavrine::operations {

std::int32_t CRestore::W_Restore(const std::wstring& destPath, const std::wstring& parentPath,
                                 const std::wstring& tempPath) {
  try {
    return clsAPI_Interface().API_ENTRY_RESTORE(destPath, parentPath, tempPath);
  } catch (...) {
    foundation::TraceException(L"W_Restore", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t CRestore::W_GetVersions(const std::wstring& filename) {
  try {
    engine::clsClient client;
    client.LoadConfigurations();
    client.GetCurrentUser();
    const std::wstring made = engine::MakeExchangeFolder(client.UserFolder());
    std::wstring folder = made;
    std::int32_t result = clsAPI_Interface().API_GETVERSIONS(filename, folder);
    // The method works in a folder of its own; the one made here stays unused.
    if (!made.empty() && folder != made) {
      std::error_code ignored;
      std::filesystem::remove(platform::ToFsPath(made), ignored);
    }
    return result;
  } catch (...) {
    foundation::TraceException(L"W_GetVersions", foundation::DescribeCurrentException());
    return -1;
  }
}

}  // namespace tavrine::operations
