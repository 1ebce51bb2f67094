#pragma once
#include <filesystem>
#include <string>

// The few things the reference compare program needs from the OS. Text
// crosses this seam as UTF-8 on every platform.
namespace tavrine::refcompare {

std::filesystem::path ProgramPath();
std::filesystem::path PathFromUtf8(const std::string& utf8);
std::string Utf8FromPath(const std::filesystem::path& path);

// Ends the process at once with exit code 3, as a crash would.
[[noreturn]] void ExitAbnormally();

// The portable program; `parameter_text` is the command line after the program name.
int RunCompareProgram(const std::string& parameter_text);

}  // namespace tavrine::refcompare
