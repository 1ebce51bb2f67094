#pragma once
#include <filesystem>
#include <optional>
#include <string>

namespace tavrine::reftools {

// The whole file; nullopt when it is not a readable regular file.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& file);

// Never creates the folder: an exchange folder that is missing stays missing,
// and nothing is written.
void WriteWholeFile(const std::filesystem::path& file, const std::string& bytes,
                    bool append = false);

}  // namespace tavrine::reftools
