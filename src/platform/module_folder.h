#pragma once
#include <string>

namespace tavrine::platform {

// The folder of the running library (no trailing separator): where
// Configuration.ini, UserName.ini and the engine programs live. Tests point it
// elsewhere through Services.
std::wstring ModuleFolder();

}  // namespace tavrine::platform
