// DLLOutput.txt and DLLOutputInfo.txt as the engine leaves them (either may
// be missing or garbage), read the way every operation reads them.
#include <cstdint>
#include <filesystem>

#include "engine/result_file.h"
#include "foundation/text_util.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  std::string_view input = tavrine::fuzz::AsView(data, size);
  // First byte: which files exist (bit 0 DLLOutput.txt, bit 1 DLLOutputInfo.txt).
  unsigned which = input.empty() ? 3 : static_cast<unsigned char>(input[0]);
  if (!input.empty()) input.remove_prefix(1);
  auto parts = tavrine::fuzz::SplitParts(input, 2);
  std::filesystem::remove_all(tavrine::fuzz::Folder() / "result");
  std::filesystem::create_directories(tavrine::fuzz::Folder() / "result");
  if (which & 1) tavrine::fuzz::WriteFile("result/DLLOutput.txt", parts[0]);
  if (which & 2) tavrine::fuzz::WriteFile("result/DLLOutputInfo.txt", parts.back());

  auto result = tavrine::engine::ReadResultFile(tavrine::fuzz::WidePath("result"));
  // Every caller turns the value into a code this way.
  (void)tavrine::foundation::RoundToInt32(result.value.value_or(0));
  return 0;
}
