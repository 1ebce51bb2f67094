#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "contract/tavrine_enum.h"

namespace tavrine::cli {

struct RemoteEntry {
  std::wstring name;
  bool is_folder = false;
  std::wstring folder_path;  // for a folder: the path to list it by, as the listing spells it
  browsing::FindData data;  // the entry's own line; a folder known only through its children has none
  bool has_line = false;
};

// Remote paths always use backslashes; a folder path ends with one.
std::wstring FolderPath(std::wstring path);

// The first-level names of the loaded listing (drives, or computers).
std::vector<std::wstring> TopLevelNames();

// The direct children of a folder: the enumeration answers every line below
// the folder, so deeper lines stand for their first folder.
std::vector<RemoteEntry> ListFolder(contract::TavrinEenum& browser, const std::wstring& folder);

}  // namespace tavrine::cli
