#pragma once
#include <cstdint>
#include <string>

#include "browsing/records.h"

namespace tavrine::browsing {

// The versions of one remote file, asked of the engine and handed out newest
// first, at most 30.
class CTavrinEFileHistory {
 public:
  std::int32_t GetFirstVersion(const std::wstring& filename, FileVersions& sfirstVer);
  std::int32_t GetNextVersion(FileVersions& sfirstVer);
  std::int32_t GetFileVersion(FileVersions& filever);
  void Init();
  // Reads BackupVersion.txt of the request's folder; 1, or -1 on failure.
  std::int32_t FetchAllVersions();

  // The exchange folder of the last request (tests point it at a prepared one).
  void set_folder(const std::wstring& folder) { folder_ = folder; }
  const std::wstring& folder() const { return folder_; }

 private:
  std::wstring folder_;
  std::int32_t highest_ = 1;
  std::int32_t cursor_ = 0;
  std::int32_t position_ = 0;
  std::wstring base_path_;
};

inline constexpr std::int32_t kMaxVersionsShown = 30;

}  // namespace tavrine::browsing
