#pragma once
#include <string>

namespace tavrine::engine {

// <user folder><sep>Temp
std::wstring ExchangeRoot(const std::wstring& user_folder);

// Creates <user folder><sep>Temp<sep><H_mm_ss_mmm> (each level when missing)
// and returns it. When a folder of that name exists already, a suffix keeps
// the new one fresh, so two calls never share a folder. "" when it cannot be made.
std::wstring MakeExchangeFolder(const std::wstring& user_folder);

}  // namespace tavrine::engine
