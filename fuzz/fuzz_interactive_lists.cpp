// The account names an e-mail address resolves to (the profile's
// InteractiveLists value, names separated by '|'). The splitter is file-local
// to the login flow, so the flow's source is compiled into this target.
#include <cstdint>
#include <cstdlib>

#include "../src/dialogs/login_flow.cpp"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  const std::wstring list = tavrine::fuzz::BytesAsUtf16(tavrine::fuzz::AsView(data, size));
  for (const std::wstring& name : tavrine::dialogs::SplitAccounts(list)) {
    if (name.empty() || name.find(tavrine::dialogs::kAccountSeparator) != std::wstring::npos ||
        !tavrine::profile::IsSafeName(name))
      std::abort();
  }
  return 0;
}
