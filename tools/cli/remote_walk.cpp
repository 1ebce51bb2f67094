#include "remote_walk.h"

#include <algorithm>
#include <map>

#include "browsing/browsing_state.h"
#include "foundation/text_util.h"

namespace tavrine::cli {

std::wstring FolderPath(std::wstring path) {
  std::replace(path.begin(), path.end(), L'/', L'\\');
  if (!path.empty() && path.back() != L'\\') path += L'\\';
  return path;
}

std::vector<std::wstring> TopLevelNames() {
  std::vector<std::wstring> names;
  const auto& listing = browsing::CurrentBrowsingState().listing;
  if (!listing) return names;
  for (const auto* node = listing->root().first_child_; node; node = node->next_sibling_) {
    names.push_back(node->name_);
  }
  return names;
}

std::vector<RemoteEntry> ListFolder(contract::TavrinEenum& browser, const std::wstring& folder) {
  // Keyed case-insensitively, as the listing compares names.
  std::map<std::wstring, RemoteEntry> children;
  browsing::FindData data;
  for (std::int32_t at = browser.TavrinEFindFirstFile(folder, data); at != -1;
       at = browser.TavrinENextFile(data)) {
    std::wstring name = data.cFilename;
    // A POSIX path backed up as "\tmp\..." leaves an empty name between separators.
    std::size_t leading = name.find_first_not_of(L'\\');
    if (leading == std::wstring::npos) continue;
    std::wstring prefix = name.substr(0, leading);
    name.erase(0, leading);
    std::size_t separator = name.find(L'\\');
    bool deeper = separator != std::wstring::npos && separator + 1 < name.size();
    std::wstring own_name = deeper || separator != std::wstring::npos ? name.substr(0, separator) : name;
    RemoteEntry& entry = children[foundation::ToLower(own_name)];
    entry.name = own_name;
    if (deeper || separator != std::wstring::npos) {
      entry.is_folder = true;
      entry.folder_path = folder + prefix + own_name + L"\\";
    }
    if (!deeper) {
      entry.data = data;
      entry.has_line = true;
    }
  }
  std::vector<RemoteEntry> entries;
  for (auto& [key, entry] : children) entries.push_back(std::move(entry));
  // Folders first, then files, each by name.
  std::stable_partition(entries.begin(), entries.end(),
                        [](const RemoteEntry& entry) { return entry.is_folder; });
  return entries;
}

}  // namespace tavrine::cli
