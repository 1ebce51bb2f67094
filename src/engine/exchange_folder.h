#pragma once
#include <string>

namespace tavrine::engine {

// <user folder><sep>Temp
std::wstring ExchangeRoot(const std::wstring& user_folder);

// Creates <user folder><sep>Temp<sep><H_mm_ss_mmm><name_tail> (each level when
// missing) and returns it. When a folder of that name exists already, a suffix
// keeps the new one fresh, so two calls never share a folder (nor read each
// other's result files). "" when it cannot be made.
std::wstring MakeExchangeFolder(const std::wstring& user_folder, const std::wstring& name_tail = L"");

// A folder the caller hands in must exist: an empty name would put requests
// (credentials included) into the host's current directory. False, with a
// trace line naming `method`, when it does not.
bool CallerFolderExists(const std::wstring& folder, const std::wstring& method);

}  // namespace tavrine::engine
