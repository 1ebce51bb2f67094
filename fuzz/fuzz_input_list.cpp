// InputList.txt from the shell side (UTF-16 with a byte-order mark, else
// ANSI) turned into the compare request. Both steps are file-local to the
// backup, so its source is compiled into this target.
#include <cstdint>
#include <cstdlib>

#include "../src/operations/manual_backup.cpp"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("backup/InputList.txt", tavrine::fuzz::AsView(data, size));
  auto items = tavrine::operations::ReadInputList(tavrine::fuzz::WidePath("backup/InputList.txt"));
  if (!items) std::abort();
  auto request = tavrine::operations::CompareRequest(*items);
  // Path and kind, two lines per item, line for line with the input; a
  // trailing separator becomes the folder kind and leaves the path.
  if (request.size() != items->size() * 2) std::abort();
  for (std::size_t i = 0; i < items->size(); ++i) {
    const std::wstring& item = (*items)[i];
    const std::wstring& path = request[2 * i];
    const std::wstring& kind = request[2 * i + 1];
    if (kind != L"0" && kind != L"1") std::abort();
    const std::size_t cut = kind == L"1" ? 1 : 0;
    if (path.size() + cut != item.size() || item.compare(0, path.size(), path) != 0) std::abort();
  }
  return 0;
}
