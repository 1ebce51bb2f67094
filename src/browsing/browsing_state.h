#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "browsing/remote_tree.h"

namespace tavrine::browsing {

// What the browsing classes of one thread share: the last load (entry array,
// tree and index), the machine list and the version array.
struct BrowsingState {
  std::shared_ptr<const RemoteListing> listing;
  std::vector<std::wstring> machine_list;
  std::vector<std::wstring> versions;  // [v] = record of version v; [0] unused
  std::int32_t version_count = 0;
};

BrowsingState& CurrentBrowsingState();

// g_bMultiplePCSupport: the shared multiple-computer flag of the settings.
bool& MultiplePcSupport();
// True when a host count text means several computers: neither empty nor "0".
bool CountMeansSeveral(const std::wstring& count);

// The user whose backup is browsed: profile "UserName", else the logged-in user.
std::wstring BrowsingUserName();
// <work root><installation name><user>
std::wstring BrowsingUserFolder(const std::wstring& user);
// <user folder>[<sep><machine>]<sep>Backupfile.txt
std::wstring ListingFile(const std::wstring& user, const std::wstring& machine);

// Reads the listing file(s) for the current flag and machine list into a new
// load and makes it the thread's. False when nothing could be read.
bool LoadListing(const std::wstring& user);

// Loads Backupfile.txt again with the flag taken from the profile's "List"
// and "HostCount"/"Count"; true when a listing was read. An empty `user`
// takes BrowsingUserName().
bool ReloadListing(const std::wstring& user = L"");

}  // namespace tavrine::browsing
