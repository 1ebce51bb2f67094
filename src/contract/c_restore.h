#pragma once
#include <cstdint>
#include <string>

namespace tavrine::contract {

// CRestore as the shell side calls it: restore and version fetch.
class CRestore {
 public:
  std::int32_t W_Restore(const std::wstring& destPath, const std::wstring& parentPath,
                         const std::wstring& tempPath);
  std::int32_t W_GetVersions(const std::wstring& filename);
};

}  // namespace tavrine::contract
