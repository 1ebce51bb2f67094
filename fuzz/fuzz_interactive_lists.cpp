// The account names an e-mail address resolves to (DLLOutput1.txt of code 117,
// names separated by '|'). The splitter is file-local to the login flow, so
// the flow's source is compiled into this target to reach it.
#include <cstdint>
#include <cstdlib>

#include "../src/dialogs/login_flow.cpp"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("out1/DLLOutput1.txt", tavrine::fuzz::AsView(data, size));
  auto lines = tavrine::foundation::ReadAnsiLines(tavrine::fuzz::WidePath("out1/DLLOutput1.txt"));
  if (!lines) std::abort();
  for (const std::wstring& name : tavrine::dialogs::SplitAccounts(*lines)) {
    if (name.empty() || name.find(tavrine::dialogs::kAccountSeparator) != std::wstring::npos)
      std::abort();
  }
  return 0;
}
