#include "operations/restore_requests.h"

#include <filesystem>

#include "engine/cls_client.h"
#include "engine/exchange_folder.h"
#include "operations/cls_api_interface.h"
#include "platform/path.h"

namespace tavrine::operations {

std::int32_t StartRestore(const std::wstring& destination, const std::wstring& parent,
                          const std::wstring& exchange_folder) {
  return clsAPI_Interface().API_ENTRY_RESTORE(destination, parent, exchange_folder);
}

std::int32_t RequestVersions(const std::wstring& remote_file) {
  engine::clsClient client;
  client.LoadConfigurations();
  client.GetCurrentUser();
  const std::wstring made = engine::MakeExchangeFolder(client.UserFolder());
  std::wstring folder = made;
  std::int32_t result = clsAPI_Interface().API_GETVERSIONS(remote_file, folder);
  // The version request works in a folder of its own; the one made here stays unused.
  if (!made.empty() && folder != made) {
    std::error_code ignored;
    std::filesystem::remove(platform::ToFsPath(made), ignored);
  }
  return result;
}

}  // namespace tavrine::operations
