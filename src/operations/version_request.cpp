#include "operations/version_request.h"

#include <filesystem>

#include "engine/exchange_folder.h"
#include "engine/session.h"
#include "operations/remote_operations.h"
#include "platform/path.h"

namespace tavrine::operations {

std::int32_t RequestVersions(const std::wstring& remote_file) {
  engine::Session session = engine::Session::Open();
  const std::wstring made = engine::MakeExchangeFolder(session.UserFolder());
  const VersionsResult versions = FetchVersions(session, remote_file);
  const std::wstring& folder = versions.folder;
  const std::int32_t result = versions.result;
  // The version request works in a folder of its own; the one made here stays unused.
  if (!made.empty() && folder != made) {
    std::error_code ignored;
    std::filesystem::remove(platform::ToFsPath(made), ignored);
  }
  return result;
}

}  // namespace tavrine::operations
