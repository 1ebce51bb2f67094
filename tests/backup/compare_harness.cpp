#include "compare_harness.h"

#include <stdexcept>

#include "platform/path.h"
#include "support/temp_folder.h"

namespace tavrine::testing {

namespace fs = std::filesystem;

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  throw std::runtime_error("compare journal: bad hex digit");
}

std::string Unhex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes += static_cast<char>(HexValue(hex[i]) * 16 + HexValue(hex[i + 1]));
  return bytes;
}

std::wstring Unescape(std::string_view text) {
  std::string raw;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      raw += static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
      i += 2;
    } else {
      raw += text[i];
    }
  }
  return platform::Utf8ToWide(raw);
}

}  // namespace

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
  if (!fs::exists(folder / "compare-journal.txt")) return runs;
  std::string text = ReadFileBytes(folder / "compare-journal.txt");
  std::string_view rest = text;
  while (!rest.empty()) {
    std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (line.empty()) continue;
    CompareRun run;
    while (!line.empty()) {
      std::size_t tab = line.find('\t');
      std::string_view field = line.substr(0, tab);
      line = tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
      std::size_t equals = field.find('=');
      if (equals == std::string_view::npos) continue;
      std::string_view key = field.substr(0, equals), value = field.substr(equals + 1);
      if (key == "folder") run.folder = Unescape(value);
      if (key == "mode") run.mode = Unescape(value);
      if (key == "params") run.params = Unescape(value);
      if (key == "note") run.note = Unescape(value);
      if (key == "DLLInput.txt" && value != "-") run.request = Unhex(value);
    }
    runs.push_back(std::move(run));
  }
  return runs;
}

std::wstring ReadUtf16File(const fs::path& file) {
  std::string bytes = ReadFileBytes(file);
  if (bytes.size() < 2 || bytes[0] != '\xFF' || bytes[1] != '\xFE') return L"<no BOM>";
  std::wstring text;
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
    text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                 (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return text;
}

}  // namespace tavrine::testing
