#pragma once
#include <string>

#include "tool_os.h"

namespace tavrine::refcompare {

using reftools::ExitAbnormally;
using reftools::PathFromUtf8;
using reftools::ProgramPath;
using reftools::Utf8FromPath;

// The portable program; `parameter_text` is the command line after the program name.
int RunCompareProgram(const std::string& parameter_text);

}  // namespace tavrine::refcompare
