#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "browsing/file_history.h"
#include "browsing/records.h"
#include "browsing/remote_tree.h"

namespace tavrine::browsing {

// Walks the remote backup folder by folder in the manner of a find-first /
// find-next search, over this thread's load of the listing; also the
// account's computers and a file's versions.
class RemoteBrowser {
 public:
  // Asks the engine for a fresh listing (and the machine list) and loads it;
  // true when a listing was read.
  bool LoadFromEngine();
  // Loads the listing files already on disk, or asks the engine when one is missing.
  bool LoadFromDisk();
  // Drops the walk and this thread's load.
  void Close();

  // 1-based position of the match, or -1 (the record then holds the empty values).
  std::int32_t FindFirst(const std::wstring& folder, FindData& entry);
  std::int32_t FindNext(FindData& entry);

  // The engine's answer (402 when the list was read), or -1.
  std::int32_t QueryMachines();
  // The number of computers in the machine list, or -1.
  std::int32_t ReadMachines();
  bool KnowsMachine(const std::wstring& machine) const;

  const std::wstring& user_name() const { return user_name_; }
  VersionHistory& versions() { return versions_; }

 private:
  std::shared_ptr<const RemoteListing> tree_;
  EnumCursor cursor_;
  std::wstring user_name_;
  VersionHistory versions_;
};

}  // namespace tavrine::browsing
