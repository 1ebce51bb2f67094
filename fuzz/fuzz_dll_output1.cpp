// DLLOutput1.txt: the server address and port after a silent login, the
// compare step's first line, and the account names of an e-mail address.
#include <cstdint>

#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavrine::foundation;
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("out1/DLLOutput1.txt", tavrine::fuzz::AsView(data, size));
  auto lines = ReadAnsiLines(tavrine::fuzz::WidePath("out1/DLLOutput1.txt"));
  if (!lines || lines->empty()) return 0;
  if (auto value = ParseNumber(lines->front())) (void)RoundToInt32(*value);
  for (const std::wstring& line : *lines) {
    (void)Trim(line);
    (void)WideToNarrowLossy(line);
  }
  return 0;
}
