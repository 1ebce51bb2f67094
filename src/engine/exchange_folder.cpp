#include "engine/exchange_folder.h"

#include "foundation/file_system.h"
#include "foundation/time_format.h"
#include "foundation/trace_log.h"
#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::engine {

using foundation::CreateFolder;
using foundation::FolderExists;

std::wstring ExchangeRoot(const std::wstring& user_folder) {
  return user_folder + platform::kPathSeparator + L"Temp";
}

std::wstring MakeExchangeFolder(const std::wstring& user_folder, const std::wstring& name_tail) {
  if (!FolderExists(user_folder) && !CreateFolder(user_folder)) return L"";
  std::wstring root = ExchangeRoot(user_folder);
  if (!FolderExists(root) && !CreateFolder(root)) return L"";
  std::wstring base =
      root + platform::kPathSeparator +
      foundation::FormatExchangeFolderName(platform::CurrentClock().Now()) + name_tail;
  std::wstring folder = base;
  for (int suffix = 1; FolderExists(folder) && suffix < 10000; ++suffix) {
    folder = base + L"_" + std::to_wstring(suffix);
  }
  if (FolderExists(folder) || !CreateFolder(folder)) return L"";
  return folder;
}

ScopedExchangeFolder::~ScopedExchangeFolder() {
  if (!folder_.empty()) foundation::DeleteFolderTree(folder_);
}

bool CallerFolderExists(const std::wstring& folder, const std::wstring& method) {
  if (foundation::FolderExists(folder)) return true;
  // What writing the request into it would have reported.
  foundation::TraceException(method, L"Path not found: " + folder);
  return false;
}

}  // namespace tavrine::engine
