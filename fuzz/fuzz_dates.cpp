// Listing and version dates ("MM-DD-YYYY HH:MM:SS"), wide and UTF-8 forms.
// Both forms must agree on ASCII text.
#include <cstdint>
#include <cstdlib>

#include "browsing/file_time.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavrine::browsing;
  std::string_view bytes = tavrine::fuzz::AsView(data, size);
  FileTime narrow{7, 7};
  DateFailure narrow_failure = ConvertListingDate(bytes, narrow);
  std::wstring wide_text = tavrine::fuzz::BytesAsUtf16(bytes);
  FileTime wide{7, 7};
  (void)ConvertListingDate(wide_text, wide);

  bool ascii = true;
  for (char c : bytes) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
  if (ascii) {
    std::wstring same(bytes.begin(), bytes.end());
    FileTime again{7, 7};
    DateFailure again_failure = ConvertListingDate(same, again);
    if (again_failure != narrow_failure || again.dwLowDateTime != narrow.dwLowDateTime ||
        again.dwHighDateTime != narrow.dwHighDateTime)
      std::abort();
  }
  // A failure leaves the record as it was.
  if (narrow_failure != DateFailure::kNone && (narrow.dwLowDateTime != 7 || narrow.dwHighDateTime != 7))
    std::abort();
  return 0;
}
