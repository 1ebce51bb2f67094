#pragma once
#include <string>
#include <utility>

namespace tavrine::engine {

// <user folder><sep>Temp
std::wstring ExchangeRoot(const std::wstring& user_folder);

// Creates <user folder><sep>Temp<sep><H_mm_ss_mmm><name_tail> (each level when
// missing) and returns it. When a folder of that name exists already, a suffix
// keeps the new one fresh, so two calls never share a folder (nor read each
// other's result files). "" when it cannot be made.
std::wstring MakeExchangeFolder(const std::wstring& user_folder, const std::wstring& name_tail = L"");

// Owns a folder made by MakeExchangeFolder: it goes, with everything in it,
// when the owner does, also when an exception passes through.
class ScopedExchangeFolder {
 public:
  explicit ScopedExchangeFolder(std::wstring folder) : folder_(std::move(folder)) {}
  ~ScopedExchangeFolder();
  ScopedExchangeFolder(const ScopedExchangeFolder&) = delete;
  ScopedExchangeFolder& operator=(const ScopedExchangeFolder&) = delete;
  const std::wstring& path() const { return folder_; }

 private:
  std::wstring folder_;
};

// A folder the caller hands in must exist: an empty name would put requests
// (credentials included) into the host's current directory. False, with a
// trace line naming `method`, when it does not.
bool CallerFolderExists(const std::wstring& folder, const std::wstring& method);

}  // namespace tavrine::engine
