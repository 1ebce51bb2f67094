#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "contract/cls_api_interface.h"
#include "contract/ui_commands.h"
#include "foundation/configuration.h"
#include "operations/session_fixture.h"
#include "platform/path.h"

namespace tavrine::operations {

using contract::UICommands;
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;
using testing::SessionTest;
using contract::clsAPI_Interface;

constexpr char kList[] = "C:\\Docs\\a.txt\r\nC:\\Docs\\old\\\r\n";

using RemoteDelete = SessionTest;

TEST_F(RemoteDelete, MissingListReturnsMinusOneWithoutStartingTheEngine) {
  install_.SetScenario(EngineScenario().On(6).Output(402));
  for (const std::wstring& list : {std::wstring(), install_.folder() + L"/nowhere.txt"}) {
    EXPECT_EQ(UICommands().W_DeleteRemoteFiles(list), -1);
  }
  EXPECT_TRUE(install_.Journal().empty());
  EXPECT_TRUE(ui_.boxes().empty());
  EXPECT_EQ(ExchangeFoldersLeft(), 0u);
  EXPECT_NE(TraceText().find("API_DELETE_REMOTE_FILE :: no list of items"), std::string::npos);
}

TEST_F(RemoteDelete, OutcomePerAnswer) {
  struct Case {
    const char* name;
    EngineScenario scenario;
    std::int32_t result;
    std::size_t runs;
    std::size_t pauses_2000;
    const wchar_t* box;  // nullptr: no box
    unsigned icon;
    bool hides_progress = true;
  };
  const Case cases[] = {
      {"402", EngineScenario().On(6).Output(402), 1, 1, 0, nullptr, 0},
      {"zero", EngineScenario().On(6).Output(0), 1, 1, 0, nullptr, 0},
      // A stale DLLOutput.txt of the first attempt must not win over the second answer.
      {"stale output", EngineScenario().On(6).Output(-416).Then().Info(-408), -408, 2, 1,
       L"Unable to get files from server", platform::kMbIconInformation},
      {"proxy failure four times", EngineScenario().On(6).Info(-12009), -12009, 4, 4,
       L"Unable to connect to the server. Try later.", platform::kMbIconStop},
      {"cleanup", EngineScenario().On(6).Info(-511), -511, 1, 0, L"Cleanup is in progress",
       platform::kMbIconStop},
      {"other code", EngineScenario().On(6).Info(-777), -777, 1, 0, nullptr, 0},
      {"no answer at all", EngineScenario().On(6).Crash(), -1, 1, 0, nullptr, 0},
      // The renewal itself is the listing's (same policy); refusing it ends at once.
      {"-505, renewal not permitted", EngineScenario().On(6).Info(-505), 401, 1, 0, nullptr, 0,
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    install_.Restart(c.scenario);
    clock_.ClearPauses();
    ui_.set_open_windows({L"TavrinE - Deleting"});
    std::size_t boxes_before = ui_.boxes().size();
    std::size_t hidden_before = ui_.hidden_windows().size();

    EXPECT_EQ(clsAPI_Interface().API_DELETE_REMOTE_FILE(DeleteList(kList)), c.result);

    auto runs = install_.Journal();
    ASSERT_EQ(runs.size(), c.runs);
    for (const auto& run : runs) {
      EXPECT_EQ(run.program, L"TavrinEClient.exe");
      EXPECT_EQ(run.params, L" 6<" + run.folder + L">");
      EXPECT_EQ(run.input_delete, std::optional<std::string>(kList));
      EXPECT_TRUE(run.request.has_value());
    }
    EXPECT_EQ(clock_.CountPauses(2000), c.pauses_2000);
    EXPECT_EQ(ExchangeFoldersLeft(), 0u);
    ASSERT_EQ(ui_.hidden_windows().size(), hidden_before + (c.hides_progress ? 1 : 0));
    EXPECT_TRUE(ui_.closed_windows().empty()) << "the progress window is hidden, not closed";
    if (c.hides_progress) { EXPECT_EQ(ui_.hidden_windows().back(), L"TavrinE - Deleting"); }
    ASSERT_EQ(ui_.boxes().size(), boxes_before + (c.box ? 1 : 0));
    if (c.box) {
      EXPECT_EQ(ui_.boxes().back().text, c.box);
      EXPECT_EQ(ui_.boxes().back().title, L"TavrinE Online Backup failure");
      EXPECT_EQ(ui_.boxes().back().style, c.icon);
    }
  }
}

using FirewallProbe = SessionTest;

TEST_F(FirewallProbe, SendsPlaceholderCredentialsInItsOwnFolder) {
  EXPECT_EQ(UICommands().W_Dummycall(), 0);
  ASSERT_TRUE(testing::WaitUntil([&] { return install_.Journal().size() == 1; }));
  auto run = install_.Journal()[0];
  EXPECT_EQ(run.program, L"TavrinEClient.exe");
  EXPECT_EQ(run.params, L" 116<" + run.folder + L">");
  fs::path folder = platform::ToFsPath(run.folder);
  EXPECT_EQ(folder.parent_path(), install_.path() / "iTemp");
  EXPECT_TRUE(platform::FromFsPath(folder.filename()).ends_with(L"_123456"));
  EXPECT_EQ(run.request, std::optional<std::string>(
                             "127.0.0.1\r\n443\r\nwugtpcog\r\nrcuuyqtf\r\npqgpet{rvkqp\r\n"
                             "MACHINECODEREADONLY\r\n0\r\n0\r\n0\r\n0\r\n0\r\n0\r\n"));
}

TEST_F(FirewallProbe, AnExistingMarkerRunsNothing) {
  testing::WriteFileBytes(install_.path() / "TavrinETestClient.txt", "");
  EXPECT_EQ(clsAPI_Interface().API_FirewallSettings(), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_TRUE(install_.Journal().empty());
  EXPECT_TRUE(fs::exists(install_.path() / "TavrinETestClient.txt"));
}

}  // namespace
}  // namespace tavrine::operations
