#pragma once
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// The few things the reference engine needs from the OS. Text crosses this
// seam as UTF-8 on every platform.
namespace tavrine::refengine {

// The whole file path of the running program.
std::filesystem::path ProgramPath();

std::filesystem::path PathFromUtf8(const std::string& utf8);
std::string Utf8FromPath(const std::filesystem::path& path);

// Renames `from` over `to`, replacing it in one step.
bool RenameReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// Writes REG_SZ-like values into the library's per-user profile store
// (Software\Brennick\<installation>\<user>): the registry on Windows, the
// store file <work root>HKEY_CURRENT_USER.ini on POSIX.
bool WriteProfileValues(const std::filesystem::path& work_root, const std::string& installation,
                        const std::string& user,
                        const std::vector<std::pair<std::string, std::string>>& values);

// Ends the process at once with exit code 3, as a crash would: no clean-up,
// no error dialog.
[[noreturn]] void ExitAbnormally();

// The portable engine; `parameter_text` is the command line after the program name.
int RunEngine(const std::string& parameter_text);

}  // namespace tavrine::refengine
