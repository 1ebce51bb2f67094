#pragma once
#include <cstdint>
#include <string>

namespace tavrine::operations {

// Restore and version fetch for the shell side.
class CRestore {
 public:
  std::int32_t W_Restore(const std::wstring& destPath, const std::wstring& parentPath,
                         const std::wstring& tempPath);
  std::int32_t W_GetVersions(const std::wstring& filename);
};

}  // namespace tavrine::operations
