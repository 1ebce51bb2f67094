#pragma once
#include <cstdint>
#include <string>

namespace tavrine::browsing {

// Plain forms of the interface records; the COM layer converts them.
struct FileTime {
  std::uint32_t dwLowDateTime = 0;
  std::uint32_t dwHighDateTime = 0;
};

struct FileVersions {
  std::int64_t nFileSize = 0;
  std::int16_t nVersion = 0;
  FileTime ftCreationTime;
  FileTime ftLastWriteTime;
};

struct FindData {
  std::int64_t nFileSize = 0;
  std::int16_t nVersion = 0;
  FileTime ftCreationTime;
  FileTime ftLastWriteTime;
  std::wstring cFilename;
  std::wstring strUnimode;
};

// What a lookup leaves when nothing matches.
void SetEmptyValues(FindData& data);

}  // namespace tavrine::browsing
