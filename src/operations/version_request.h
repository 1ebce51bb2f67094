#pragma once
#include <cstdint>
#include <string>

namespace tavrine::operations {

// Asks the engine for the versions of one remote file in a session of its
// own; the engine's answer. The versions are left in the request's folder.
std::int32_t RequestVersions(const std::wstring& remote_file);

}  // namespace tavrine::operations
