// BackupVersion.txt: the record list read from the exchange folder, then
// handed out newest first with its dates converted.
#include <cstdint>

#include "browsing/file_history.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("versions/BackupVersion.txt", tavrine::fuzz::AsView(data, size));
  tavrine::browsing::VersionHistory history;
  history.Restart();
  history.set_folder(tavrine::fuzz::WidePath("versions"));
  if (history.ReadVersionFile() == 1) {
    history.set_folder(L"");  // nothing to delete when the list ends
    tavrine::browsing::FileVersions version;
    for (int shown = 0; shown < 40 && history.Next(version) != -1; ++shown) {
    }
  }
  return 0;
}
