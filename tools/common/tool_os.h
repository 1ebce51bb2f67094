#pragma once
#include <filesystem>
#include <string>

// The OS calls the reference tools share. Text crosses this seam as UTF-8 on
// every platform.
namespace tavrine::reftools {

// The whole file path of the running program.
std::filesystem::path ProgramPath();

std::filesystem::path PathFromUtf8(const std::string& utf8);
std::string Utf8FromPath(const std::filesystem::path& path);

// Ends the process at once with exit code 3, as a crash would: no clean-up,
// no error dialog.
[[noreturn]] void ExitAbnormally();

// The parameter text as the library passed it. Windows: the raw command line
// after the program name and its one separating blank.
std::string ParameterTextFromCommandLine();
// POSIX: the library hands the text over as one argument; split pieces are
// joined back with single spaces.
std::string ParameterTextFromArguments(int argc, char** argv);

}  // namespace tavrine::reftools
