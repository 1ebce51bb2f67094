// The reference engine as a real process, started the way the library starts it.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine_run.h"
#include "platform/path.h"
#include "platform/process.h"
#include "support/engine_harness.h"
#include "support/temp_folder.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;
using platform::WaitOutcome;

// Runs the engine with `code` on `folder` until it ends (30 s at most).
WaitOutcome RunToEnd(const EngineInstall& install, int code, const fs::path& folder,
                     std::wstring_view program = L"TavrinEClient.exe") {
  return install.Run(engine::EngineParameters(code, platform::FromFsPath(folder)), program);
}

// A fresh exchange folder holding a request, as the library leaves it.
fs::path MakeExchange(const EngineInstall& install, const std::string& name) {
  fs::path folder = install.path() / "Temp" / name;
  WriteFileBytes(folder / "DLLInput.txt", Utf16LeFile(L"10.0.0.1\r\n443\r\n"));
  return folder;
}

// The files in a folder with their bytes, the request aside.
using Files = std::map<std::string, std::string>;
Files Answered(const fs::path& folder) {
  Files files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (name != "DLLInput.txt") files[name] = ReadFileBytes(entry.path());
  }
  return files;
}

// Each code plays its answers in order, then repeats the last; alias names
// share the queue; a code without an entry, or no scenario at all, answers nothing.
TEST(EngineRefQueue, EachCodePlaysItsAnswersInOrderThenRepeatsTheLast) {
  EngineInstall install({.aliases = {L"TavrinEClsClient.exe"}});
  fs::path bare = MakeExchange(install, "no scenario");
  ASSERT_EQ(RunToEnd(install, 113, bare), WaitOutcome::kExited);
  EXPECT_EQ(Answered(bare), Files{});

  install.SetScenario(EngineScenario().On(115).Output(-416).Then().Info(-12009, "Server busy")
                          .Then().Output(0).On(114).Output(7));
  const struct {
    int code;
    const wchar_t* program;
    Files files;
  } runs[] = {
      {115, L"TavrinEClient.exe", {{"DLLOutput.txt", "-416\r\n"}}},
      {114, L"TavrinEClsClient.exe", {{"DLLOutput.txt", "7\r\n"}}},
      {115, L"TavrinEClsClient.exe", {{"DLLOutputInfo.txt", "-12009\r\nServer busy\r\n"}}},
      {116, L"TavrinEClient.exe", {}},
      {115, L"TavrinEClient.exe", {{"DLLOutput.txt", "0\r\n"}}},
      {115, L"TavrinEClient.exe", {{"DLLOutput.txt", "0\r\n"}}},
      {114, L"TavrinEClient.exe", {{"DLLOutput.txt", "7\r\n"}}},
  };
  int number = 0;
  for (const auto& run : runs) {
    SCOPED_TRACE(++number);
    fs::path folder = MakeExchange(install, "H_" + std::to_string(number));
    ASSERT_EQ(RunToEnd(install, run.code, folder, run.program), WaitOutcome::kExited);
    EXPECT_EQ(Answered(folder), run.files);
  }
  auto journal = install.Journal();
  ASSERT_EQ(journal.size(), 8u);
  EXPECT_EQ(journal[3].program, L"TavrinEClsClient.exe");
  std::vector<std::optional<std::size_t>> answers;
  for (const EngineRun& run : journal) answers.push_back(run.answer);
  EXPECT_EQ(answers, (std::vector<std::optional<std::size_t>>{std::nullopt, 0, 0, 1, std::nullopt, 2, 2, 0}));
}

// Scripted files hold exactly their bytes, garbage included; a crash leaves
// nothing, a halfway crash the first half of its file.
TEST(EngineRefResults, FilesHoldExactlyTheScriptedBytesUntilACrash) {
  EngineInstall install;
  const std::string listing = Utf16LeFile(L"C\\Docs\\a.txt|12|2011\r\n");
  const std::string garbage("\xff\x00\x80\r\x1a", 5);
  install.SetScenario(EngineScenario()
                          .On(114).Info(-504).WithFile("DLLOutput1.txt", garbage)
                          .On(115).Output(0).WithFile("Backupfile.txt", listing)
                          .On(116).Crash().Output(0)
                          .On(117).CrashHalfway("Backupfile.txt", "0123456789a").Output(0));
  const std::vector<std::pair<int, Files>> runs = {
      {114, {{"DLLOutputInfo.txt", "-504\r\n"}, {"DLLOutput1.txt", garbage}}},
      {115, {{"Backupfile.txt", listing}, {"DLLOutput.txt", "0\r\n"}}},
      {116, {}},
      {117, {{"Backupfile.txt", "01234"}}},
  };
  for (const auto& [code, files] : runs) {
    SCOPED_TRACE(code);
    fs::path folder = MakeExchange(install, std::to_string(code));
    ASSERT_EQ(RunToEnd(install, code, folder), WaitOutcome::kExited);
    EXPECT_EQ(Answered(folder), files);
  }
}

TEST(EngineRefJournal, RecordsRequestParametersAndFoldersExactly) {
  // Spaces and non-ASCII both in the install folder and in the exchange folder;
  // only characters of the ANSI code page, as the Windows launcher passes ANSI text.
  EngineInstall install({.folder_name = L"Tavrin E \u00dcn\u00ef \u20ac"});
  fs::path folder = install.path() / platform::ToFsPath(L"Anna M\u00fcller") / "Temp" /
                    "H_1_02_003";
  const std::string request = Utf16LeFile(L"10.0.0.1\r\n443\r\ncde\r\n\r\n\r\n1234567\r\n");
  const std::string restore_to = Utf16LeFile(L"D:\\Restore here\r\n");
  WriteFileBytes(folder / "DLLInput.txt", request);
  WriteFileBytes(folder / "restdestdir.txt", restore_to);
  WriteFileBytes(folder / "MPC.ini", "[MPC]\r\nHostCount=2\r\n");

  const std::wstring wfolder = platform::FromFsPath(folder);
  ASSERT_EQ(RunToEnd(install, 123, folder), WaitOutcome::kExited);

  auto journal = install.Journal();
  ASSERT_EQ(journal.size(), 1u);
  const EngineRun& run = journal[0];
  EXPECT_EQ(run.code, 123);
  EXPECT_EQ(run.folder, wfolder);
  EXPECT_EQ(run.params, L" 123<" + wfolder + L">");
  EXPECT_EQ(run.program, L"TavrinEClient.exe");
  EXPECT_EQ(fs::weakly_canonical(platform::ToFsPath(run.cwd)), fs::weakly_canonical(install.path()));
  EXPECT_EQ(run.request, request);
  EXPECT_EQ(run.restdestdir, restore_to);
  EXPECT_EQ(run.mpc_ini, "[MPC]\r\nHostCount=2\r\n");
  EXPECT_EQ(run.input_delete, std::nullopt);
  EXPECT_EQ(run.note, L"");

  // A folder that is not there is journaled without a request, and not made.
  const fs::path missing = install.path() / "Temp" / "never made";
  ASSERT_EQ(RunToEnd(install, 115, missing), WaitOutcome::kExited);
  EXPECT_FALSE(fs::exists(missing));
  EXPECT_EQ(install.Journal().back().request, std::nullopt);
}

TEST(EngineRefJournal, ParameterTextIsParsedUpToTheLastBracket) {
  EngineInstall install;
  const std::wstring base = install.folder() + platform::kPathSeparator;
  struct Case {
    std::wstring params;
    std::optional<int> code;
    std::wstring folder;
  };
  const std::vector<Case> cases = {
      {L" 5<" + base + L"x>", 5, base + L"x"},
      {L" 115<" + base + L"a>b>", 115, base + L"a>b"},
      {L" 115<" + base + L"x>tail", 115, base + L"x"},
      {L" 115 <" + base + L"x>", std::nullopt, L""},
      {L" <" + base + L"x>", std::nullopt, L""},
      {L" 115<" + base + L"x", std::nullopt, L""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(platform::WideToUtf8(c.params));
    ASSERT_EQ(install.Run(c.params), WaitOutcome::kExited);
    const EngineRun run = install.Journal().back();
    EXPECT_EQ(run.params, c.params);
    EXPECT_EQ(run.code, c.code);
    EXPECT_EQ(run.folder, c.folder);
  }
}

}  // namespace
}  // namespace tavrine::testing
