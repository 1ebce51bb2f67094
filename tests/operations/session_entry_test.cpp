#include <gtest/gtest.h>

#include "engine/engine_run.h"
#include "contract/cls_api_interface.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "session_fixture.h"

namespace tavrine::operations {
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;
using testing::RequestLine;
using testing::SessionTest;
using contract::clsAPI_Interface;

using SilentLogin = SessionTest;

TEST_F(SilentLogin, TransientAnswersAreRetriedTenTimesThenTheFolderIsRemoved) {
  install_.SetScenario(EngineScenario().On(116).Info(-12009));
  EXPECT_EQ(clsAPI_Interface().API_AutoReconnect(), -12009);
  auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 10u);
  for (const auto& run : runs) {
    EXPECT_EQ(run.code, 116);
    EXPECT_EQ(run.program, L"TavrinEClsClient.exe");
    EXPECT_EQ(RequestLine(run, 6), L"MACHINECODEREADONLY");
  }
  EXPECT_EQ(clock_.CountPauses(2000), 9u);
  EXPECT_EQ(ExchangeFoldersLeft(), 0u);
  EXPECT_TRUE(ui_.boxes().empty());
}

TEST_F(SilentLogin, CleanupInProgressStopsAtOnceWithOneBox) {
  install_.SetScenario(EngineScenario().On(116).Info(-511));
  EXPECT_EQ(clsAPI_Interface().API_AutoReconnect(), -511);
  EXPECT_EQ(install_.Journal().size(), 1u);
  ASSERT_EQ(ui_.boxes().size(), 1u);
  EXPECT_EQ(ui_.boxes()[0].text, L"TavrinE login failure");
  EXPECT_EQ(ui_.boxes()[0].title, L"TavrinE Online Backup");
  EXPECT_EQ(ui_.boxes()[0].style, platform::kMbIconStop);
}

TEST_F(SilentLogin, SuccessTakesOverTheReportedServerEvenWithoutAPort) {
  install_.SetScenario(EngineScenario().On(116).Info(-416).Then().Output(402).WithFile(
      "DLLOutput1.txt", "10.20.30.40\r\n"));
  EXPECT_EQ(clsAPI_Interface().API_AutoMultipleServerSupport(), 402);
  EXPECT_EQ(install_.Journal().size(), 2u);
  EXPECT_EQ(clock_.CountPauses(2000), 1u);
  EXPECT_EQ(profile::GetUserProfile(L"serverip"), L"10.20.30.40");
  EXPECT_EQ(profile::GetUserProfile(L"port"), L"");
  // The success path leaves its folder, without the request.
  ASSERT_EQ(ExchangeFoldersLeft(), 1u);
}

// The silent login counts it as no answer; the login entry gives -1, completed all the same.
TEST_F(SilentLogin, AnEngineThatCannotStartCountsAsNoAnswer) {
  fs::remove(install_.path() / "TavrinEClsClient.exe");
  EXPECT_EQ(clsAPI_Interface().API_AutoReconnect(), 0);
  EXPECT_EQ(clock_.CountPauses(2000), 9u);
  EXPECT_NE(TraceText().find("Engine could not be started"), std::string::npos);
  std::int16_t completed = 0;
  EXPECT_EQ(clsAPI_Interface().API_ENTRY(CallerFolder(L"f"), completed), -1);
  EXPECT_EQ(completed, 1);
}

using UpdateRandom = SessionTest;

// Four busy answers store nothing; any other answer stores the number sent.
TEST_F(UpdateRandom, StoresTheNewNumberWhateverTheAnswerBut416) {
  for (const auto& [code, runs] : {std::pair{-401, 1u}, {-416, 4u}}) {
    SCOPED_TRACE(code);
    install_.Restart(EngineScenario().On(5).Info(code));
    profile::UpdateUserProfile(L"random", L"old");
    EXPECT_EQ(clsAPI_Interface().API_UPDATE_RAND_NUM(), code);
    auto journal = install_.Journal();
    ASSERT_EQ(journal.size(), runs);
    const std::wstring sent = RequestLine(journal[0], 6);
    EXPECT_NE(sent, L"old");
    EXPECT_EQ(profile::GetUserProfile(L"random"), code == -416 ? L"old" : sent);
    EXPECT_TRUE(clock_.pauses().empty());
    EXPECT_EQ(ExchangeFoldersLeft(), 0u);
  }
}

using Entry = SessionTest;

TEST_F(Entry, StartsTheLoginRunInTheCallersFolderAndReturnsAtOnce) {
  install_.SetScenario(EngineScenario().On(110).Output(900));
  std::wstring folder = CallerFolder(L"entry folder");
  std::int16_t completed = 0;
  std::int32_t handle = clsAPI_Interface().API_ENTRY(folder, completed);
  EXPECT_NE(handle, -1);
  EXPECT_EQ(completed, 1);
  // The caller waits; here the journal shows when the engine has run.
  ASSERT_TRUE(testing::WaitUntil([&] { return !install_.Journal().empty(); }));
  auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].params, engine::EngineParameters(110, folder));
  EXPECT_EQ(RequestLine(runs[0], 6), L"Does not exist");
}

// An empty or missing caller folder would put the request, credentials and
// all, into the current directory: nothing is written and no engine runs.
TEST_F(Entry, CallsWithoutTheCallersFolderTouchNothing) {
  install_.SetScenario(EngineScenario().On(110).Output(900).On(115).Output(402).On(7).Output(402));
  const fs::path cwd = fs::current_path();
  fs::current_path(install_.path());
  const std::wstring missing = install_.folder() + platform::kPathSeparator + L"never made";
  for (const std::wstring& folder : {std::wstring(), missing}) {
    SCOPED_TRACE(platform::WideToUtf8(folder));
    std::int16_t completed = 0;
    EXPECT_EQ(clsAPI_Interface().API_ENTRY(folder, completed), -1);
    EXPECT_EQ(clsAPI_Interface().API_REMOTE(folder), -1);
    EXPECT_EQ(clsAPI_Interface().API_ENTRY_RESTORE(CallerFolder(L"dest"), L"PC\\C:\\a", folder), -1);
  }
  platform::SystemClock().Sleep(300);
  fs::current_path(cwd);
  EXPECT_TRUE(install_.Journal().empty());
  for (const char* name : {"DLLInput.txt", "restdestdir.txt", "MPC.ini"}) {
    EXPECT_FALSE(fs::exists(install_.path() / name)) << name;
  }
  EXPECT_NE(TraceText().find("[EXCEPTION] API_REMOTE() : Path not found: "), std::string::npos);
}

}  // namespace
}  // namespace tavrine::operations
