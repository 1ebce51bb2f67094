#include "operations/c_restore.h"

#include <filesystem>

#include "engine/session.h"
#include "engine/exchange_folder.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"
#include "platform/path.h"

namespace tavrine::operations {

std::int32_t CRestore::W_Restore(const std::wstring& destPath, const std::wstring& parentPath,
                                 const std::wstring& tempPath) {
  try {
    engine::Session session = engine::Session::Open();
    return StartRestore(session, destPath, parentPath, tempPath);
  } catch (...) {
    foundation::TraceException(L"W_Restore", foundation::DescribeCurrentException());
    return -1;
  }
}

std::int32_t CRestore::W_GetVersions(const std::wstring& filename) {
  try {
    engine::Session session = engine::Session::Open();
    const std::wstring made = engine::MakeExchangeFolder(session.UserFolder());
    VersionsResult versions = FetchVersions(session, filename);
    const std::wstring& folder = versions.folder;
    std::int32_t result = versions.result;
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
