#pragma once
#include <cstdint>
#include <string>

#include "browsing/records.h"

namespace tavrine::browsing {

// The versions of one remote file, asked of the engine and handed out newest
// first, at most 30. Each call returns the count of versions left including
// the one handed out, or -1.
class VersionHistory {
 public:
  // Asks the engine for the file's versions and hands out the newest.
  std::int32_t First(const std::wstring& remote_file, FileVersions& version);
  std::int32_t Next(FileVersions& version);
  // Reads BackupVersion.txt of the request's folder; 1, or -1 on failure.
  std::int32_t ReadVersionFile();
  // Forgets the versions handed out.
  void Restart();

  // The exchange folder of the last request (tests point it at a prepared one).
  void set_folder(const std::wstring& folder) { folder_ = folder; }
  const std::wstring& folder() const { return folder_; }

 private:
  std::wstring folder_;
  std::int32_t highest_ = 1;
  std::int32_t handed_out_ = 0;
  std::int32_t position_ = 0;
};

inline constexpr std::int32_t kMaxVersionsShown = 30;

// The class name the version lines of the trace log have always carried.
inline constexpr const wchar_t* kVersionTraceClass = L"CTavrinEFileHistory";

}  // namespace tavrine::browsing
