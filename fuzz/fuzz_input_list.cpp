// InputList.txt from the shell side (UTF-16 with a byte-order mark, else
// ANSI) turned into the compare request. Both steps are file-local to the
// backup, so its source is compiled into this target.
#include <cstdint>
#include <cstdlib>

#include "../src/operations/c_backup.cpp"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("backup/InputList.txt", tavrine::fuzz::AsView(data, size));
  auto items = tavrine::operations::ReadInputList(tavrine::fuzz::WidePath("backup/InputList.txt"));
  if (!items) std::abort();
  auto request = tavrine::operations::CompareRequest(*items);
  // Path and kind, two lines per item; a path is never empty.
  if (request.size() % 2 != 0) std::abort();
  for (std::size_t i = 0; i < request.size(); i += 2) {
    if (request[i].empty() || (request[i + 1] != L"0" && request[i + 1] != L"1")) std::abort();
  }
  return 0;
}
