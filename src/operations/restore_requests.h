#pragma once
#include <cstdint>
#include <string>

namespace tavrine::operations {

// Starts the restore engine for the items listed in `exchange_folder`; its
// process id, or -1.
std::int32_t StartRestore(const std::wstring& destination, const std::wstring& parent,
                          const std::wstring& exchange_folder);

// Asks the engine for the versions of one remote file; the engine's answer.
std::int32_t RequestVersions(const std::wstring& remote_file);

}  // namespace tavrine::operations
