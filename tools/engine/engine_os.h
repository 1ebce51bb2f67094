#pragma once
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tool_os.h"

// The OS calls of the reference engine; those the compare program needs as
// well come from tool_os.h. Text crosses this seam as UTF-8 on every platform.
namespace tavrine::refengine {

using reftools::ExitAbnormally;
using reftools::PathFromUtf8;
using reftools::ProgramPath;
using reftools::Utf8FromPath;

// Renames `from` over `to`, replacing it in one step.
bool RenameReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// Writes REG_SZ-like values into the library's per-user profile store
// (Software\Brennick\<installation>\<user>): the registry on Windows, the
// store file <work root>HKEY_CURRENT_USER.ini on POSIX.
bool WriteProfileValues(const std::filesystem::path& work_root, const std::string& installation,
                        const std::string& user,
                        const std::vector<std::pair<std::string, std::string>>& values);

// The portable engine; `parameter_text` is the command line after the program name.
int RunEngine(const std::string& parameter_text);

}  // namespace tavrine::refengine
