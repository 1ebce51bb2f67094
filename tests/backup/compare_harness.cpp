#include "compare_harness.h"

#include <stdexcept>

#include "support/engine_harness.h"
#include "support/temp_folder.h"

namespace tavrine::testing {

namespace fs = std::filesystem;

void InstallCompareProgram(const fs::path& folder) {
  const fs::path program = TestProgramFolder() / "TavrinECompareList.exe";
  if (!fs::exists(program))
    throw std::runtime_error("compare program not built beside the test program");
  fs::copy_file(program, folder / "TavrinECompareList.exe", fs::copy_options::overwrite_existing);
}

void WriteCompareScenario(const fs::path& folder, std::string_view text) {
  WriteFileBytes(folder / "compare-scenario.txt", std::string(text));
}

std::vector<CompareRun> ReadCompareJournal(const fs::path& folder) {
  std::vector<CompareRun> runs;
  for (const JournalLine& line : ReadJournal(folder / "compare-journal.txt")) {
    runs.push_back({JournalText(line, "params"), JournalText(line, "note"),
                    JournalBytes(line, "DLLInput.txt")});
  }
  return runs;
}

std::wstring ReadUtf16File(const fs::path& file) {
  std::string bytes = ReadFileBytes(file);
  if (bytes.size() < 2 || bytes[0] != '\xFF' || bytes[1] != '\xFE') return L"<no BOM>";
  return Utf16LeText(bytes);
}

}  // namespace tavrine::testing
