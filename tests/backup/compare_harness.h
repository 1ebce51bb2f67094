#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrine::testing {

// Copies the built TavrinECompareList.exe beside the engine of an install folder.
void InstallCompareProgram(const std::filesystem::path& folder);
// compare-scenario.txt (format: tools/compare/README.md).
void WriteCompareScenario(const std::filesystem::path& folder, std::string_view text);

// One line of compare-journal.txt.
struct CompareRun {
  std::wstring params;
  std::wstring note;
  std::optional<std::string> request;  // DLLInput.txt bytes at the start
};
std::vector<CompareRun> ReadCompareJournal(const std::filesystem::path& folder);

// Text of a UTF-16LE file with BOM, for assertions (ASCII and Latin-1 only).
std::wstring ReadUtf16File(const std::filesystem::path& file);

}  // namespace tavrine::testing

