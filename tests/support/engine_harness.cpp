#include "support/engine_harness.h"

#include <stdexcept>

#include "platform/path.h"
#include "support/install_folder.h"
#include "tool_text.h"

namespace tavrine::testing {

namespace fs = std::filesystem;

std::string Hex(std::string_view bytes) { return reftools::HexBytes(bytes); }

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  throw std::runtime_error("journal: bad hex digit");
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

EngineScenario& EngineScenario::On(int code) {
  for (current_ = 0; current_ < queues_.size(); ++current_)
    if (queues_[current_].first == code) return *this;
  queues_.push_back({code, {{}}});
  return *this;
}

EngineScenario& EngineScenario::Then() {
  if (current_ >= queues_.size()) throw std::logic_error("EngineScenario: Then() before On()");
  queues_[current_].second.emplace_back();
  return *this;
}

EngineScenario& EngineScenario::Add(std::string line) {
  if (current_ >= queues_.size()) throw std::logic_error("EngineScenario: action before On()");
  if (line.find_first_of("\r\n") != std::string::npos)
    throw std::invalid_argument("EngineScenario: line breaks need WithFile()");
  queues_[current_].second.back().push_back(std::move(line));
  return *this;
}

std::string EngineScenario::Text() const {
  std::string text;
  for (const auto& [code, answers] : queues_) {
    text += "on " + std::to_string(code) + "\n";
    for (std::size_t i = 0; i < answers.size(); ++i) {
      if (i > 0) text += "then\n";
      for (const std::string& line : answers[i]) text += "  " + line + "\n";
    }
  }
  return text;
}

std::vector<JournalLine> ReadJournal(const fs::path& file) {
  std::vector<JournalLine> lines;
  std::string text = ReadFileBytes(file);
  std::string_view rest = text;
  while (!rest.empty()) {
    std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (line.empty()) continue;
    JournalLine& fields = lines.emplace_back();
    while (!line.empty()) {
      std::size_t tab = line.find('\t');
      std::string_view field = line.substr(0, tab);
      line = tab == std::string_view::npos ? std::string_view() : line.substr(tab + 1);
      std::size_t equals = field.find('=');
      if (equals != std::string_view::npos)
        fields[std::string(field.substr(0, equals))] = std::string(field.substr(equals + 1));
    }
  }
  return lines;
}

std::wstring JournalText(const JournalLine& line, std::string_view key) {
  auto it = line.find(key);
  return it == line.end() ? std::wstring() : Unescape(it->second);
}

std::optional<std::string> JournalBytes(const JournalLine& line, std::string_view key) {
  auto it = line.find(key);
  if (it == line.end() || it->second == "-") return std::nullopt;
  return Unhex(it->second);
}

EngineInstallOptions StandardEngineInstall() {
  return {.folder_name = L"install dir",
          .aliases = {L"TavrinEClsClient.exe"},
          .configuration_ini = StandardConfiguration("EngineTimeoutSeconds=20\r\n")};
}

std::wstring RequestLine(const EngineRun& run, int number) {
  if (!run.request) return L"<no request>";
  std::wstring text = Utf16LeText(*run.request);
  std::size_t start = 0;
  for (int line = 1; line < number; ++line) start = text.find(L"\r\n", start) + 2;
  return text.substr(start, text.find(L"\r\n", start) - start);
}

EngineInstall::EngineInstall(const EngineInstallOptions& options) {
  path_ = temp_.path();
  if (!options.folder_name.empty()) {
    path_ /= platform::ToFsPath(options.folder_name);
    fs::create_directories(path_);
  }
  folder_text_ = platform::FromFsPath(path_);
  const fs::path engine = TestProgramFolder() / "TavrinEClient.exe";
  if (!fs::exists(engine))
    throw std::runtime_error("reference engine not built beside the test program: " +
                             engine.string());
  fs::copy_file(engine, path_ / "TavrinEClient.exe", fs::copy_options::overwrite_existing);
  for (const std::wstring& alias : options.aliases)
    fs::copy_file(engine, path_ / platform::ToFsPath(alias), fs::copy_options::overwrite_existing);
  if (options.configuration_ini) WriteFile(L"Configuration.ini", *options.configuration_ini);

  services_.emplace(platform::Services{.module_folder = folder_text_});
}

std::wstring EngineInstall::Program(std::wstring_view name) const {
  return folder_text_ + platform::kPathSeparator + std::wstring(name);
}

EngineInstall::Process EngineInstall::Start(const std::wstring& parameters,
                                            std::wstring_view name) const {
  return platform::CurrentLauncher().Start(Program(name), parameters, folder_text_);
}

platform::WaitOutcome EngineInstall::Run(const std::wstring& parameters,
                                         std::wstring_view name) const {
  auto process = Start(parameters, name);
  if (!process) return platform::WaitOutcome::kFailed;
  platform::WaitOutcome outcome = process->Wait(30000);
  if (outcome == platform::WaitOutcome::kStillRunning) process->Terminate(1);
  return outcome;
}

void EngineInstall::SetScenario(const EngineScenario& scenario) const {
  WriteFileBytes(path_ / "engine-scenario.txt", scenario.Text());
}

void EngineInstall::Restart(const EngineScenario& scenario) const {
  std::error_code ignored;
  fs::remove(path_ / "engine-journal.txt", ignored);
  SetScenario(scenario);
}

void EngineInstall::WriteFile(std::wstring_view name, std::string_view bytes) const {
  WriteFileBytes(path_ / platform::ToFsPath(std::wstring(name)), std::string(bytes));
}

std::vector<EngineRun> EngineInstall::Journal() const {
  std::vector<EngineRun> runs;
  for (const JournalLine& line : ReadJournal(path_ / "engine-journal.txt")) {
    EngineRun& run = runs.emplace_back();
    if (auto it = line.find("code"); it != line.end() && !it->second.empty())
      run.code = std::stoi(it->second);
    if (auto it = line.find("answer"); it != line.end() && it->second != "-")
      run.answer = std::stoul(it->second);
    run.program = JournalText(line, "program");
    run.folder = JournalText(line, "folder");
    run.cwd = JournalText(line, "cwd");
    run.params = JournalText(line, "params");
    run.note = JournalText(line, "note");
    run.request = JournalBytes(line, "DLLInput.txt");
    run.restdestdir = JournalBytes(line, "restdestdir.txt");
    run.input_delete = JournalBytes(line, "InputDelete.txt");
    run.mpc_ini = JournalBytes(line, "MPC.ini");
  }
  return runs;
}

std::vector<int> EngineInstall::Codes() const {
  std::vector<int> codes;
  for (const EngineRun& run : Journal()) codes.push_back(run.code.value_or(-1));
  return codes;
}

}  // namespace tavrine::testing
