#include <gtest/gtest.h>

#include <thread>

#include "contract/cls_api_interface.h"
#include "contract/ui_commands.h"
#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "operations/last_quota.h"
#include "operations/shared_texts.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "session_fixture.h"

namespace tavrine::operations {

using contract::UICommands;
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;
using testing::SessionTest;
using contract::clsAPI_Interface;

using Listing = SessionTest;

TEST_F(Listing, ZeroBecomes402WithAListingAndMinus412Without) {
  install_.SetScenario(
      EngineScenario().On(115).Output(0).WithFile("Backupfile.txt", "listing").Then().Output(0));
  std::wstring with_listing = CallerFolder(L"a b");
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(with_listing), 402);
  EXPECT_TRUE(fs::exists(platform::ToFsPath(with_listing) / "Backupfile.txt"));
  EXPECT_FALSE(fs::exists(platform::ToFsPath(with_listing) / "DLLInput.txt"));
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(CallerFolder(L"empty")), -412);
  EXPECT_TRUE(ui_.boxes().empty());
}

TEST_F(Listing, TenTransientAnswersEndWithTheConnectionFailureBox) {
  install_.SetScenario(EngineScenario().On(115).Info(-416));
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(CallerFolder(L"busy")), -416);
  EXPECT_EQ(install_.Journal().size(), 10u);
  EXPECT_EQ(clock_.CountPauses(1000), 10u);
  ASSERT_EQ(ui_.boxes().size(), 1u);
  EXPECT_EQ(ui_.boxes()[0].text, L"Unable to connect to the server. Try later.");
  EXPECT_EQ(ui_.boxes()[0].title, L"TavrinE Online Backup failure");
}

// Every code the listing retries ends, as the last answer, with the
// connection-failure box, never the code's own.
TEST_F(Listing, EveryRetriedCodeEndsWithTheConnectionFailureBox) {
  foundation::LoadConfigurations();
  for (int code : {-416, -404, -417, -403, -508, -507, -506, -401, -405, -12008, -12009, -12010}) {
    ShowListingFailure(code, foundation::LoadedConfiguration());
  }
  ASSERT_EQ(ui_.boxes().size(), 12u);
  for (const auto& box : ui_.boxes()) {
    EXPECT_EQ(box.text, L"Unable to connect to the server. Try later.");
    EXPECT_EQ(box.title, L"TavrinE Online Backup failure");
  }
}

TEST_F(Listing, UnregisteredMachineReturns401UnlessRenewalIsPermitted) {
  install_.SetScenario(EngineScenario().On(115).Info(-505));
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(CallerFolder(L"m1")), 401);
  EXPECT_EQ(install_.Journal().size(), 1u);

  install_.Restart(EngineScenario()
                       .On(115).Info(-505).Then().Output(0).WithFile("Backupfile.txt", "x")
                       .On(5).Output(404));
  foundation::ThreadState().renew_random_permitted = true;
  clock_.ClearPauses();
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(CallerFolder(L"m2")), 402);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{115, 5, 115}));
  EXPECT_EQ(clock_.CountPauses(500), 1u);
}

// A cancel marker the shell side left stops the listing before any run.
TEST_F(Listing, ACancelMarkerStartsNoRun) {
  install_.SetScenario(EngineScenario().On(115).Output(0).WithFile("Backupfile.txt", "x"));
  std::wstring folder = CallerFolder(L"cancel me");
  testing::WriteFileBytes(platform::ToFsPath(folder) / "cancel.txt", "");
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(folder), -1);
  EXPECT_TRUE(install_.Journal().empty());
  fs::remove(platform::ToFsPath(folder) / "cancel.txt");
  EXPECT_EQ(clsAPI_Interface().API_REMOTE(folder), 402);
}

using Quota = SessionTest;

// A one-line Quota.txt leaves the maximum at 0, no file the used space at -1; only
// a maximum sets the plan flag, by its exact value. The folder is removed.
TEST_F(Quota, FiguresComeFromQuotaTxtAndTheFreePlanFromTheExactMaximum) {
  const struct {
    std::optional<std::string> quota;
    double used, max_size;
    const wchar_t* freeuser;
  } cases[] = {
      {"1073741824\r\n2147483648\r\n", 1073741824.0, 2147483648.0, L"1"},
      {"10\r\n2147483649\r\n", 10, 2147483649.0, L"0"},
      {"10\r\n12884901888\r\n", 10, 12884901888.0, L"1"},
      {"10\r\n161061273600\r\n", 10, 161061273600.0, L"1"},
      {"10\r\n5368709120\r\n", 10, 5368709120.0, L"0"},
      {"42\r\n", 42, 0, L"unchanged"},
      {std::nullopt, -1, 0, L"unchanged"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.quota.value_or("no file"));
    EngineScenario scenario;
    scenario.On(114).Output(402);
    if (c.quota) scenario.WithFile("Quota.txt", *c.quota);
    install_.SetScenario(scenario);
    profile::UpdateUserProfile(L"freeuser", L"unchanged");
    const std::size_t runs_before = install_.Journal().size();
    double max_size = 5, used = 5;
    EXPECT_EQ(UICommands().W_GetQuota_Command(max_size, used), 0);
    EXPECT_EQ(used, c.used);
    EXPECT_EQ(max_size, c.max_size);
    EXPECT_EQ(profile::GetUserProfile(L"freeuser"), c.freeuser);
    const auto runs = install_.Journal();
    ASSERT_EQ(runs.size(), runs_before + 1);
    EXPECT_EQ(runs.back().program, L"TavrinEClsClient.exe");
    EXPECT_FALSE(fs::exists(platform::ToFsPath(runs.back().folder)));
  }
}

TEST_F(Quota, FailedAnswers) {
  const struct {
    const char* name;
    EngineScenario scenario;
    std::vector<int> codes;
    std::vector<std::uint32_t> pauses;
    double max_size;
    const wchar_t* box;  // a part of its text; nullptr: no box
    const wchar_t* title;
  } cases[] = {
      // Four busy answers also drop the login in progress.
      {"busy", EngineScenario().On(114).Info(-416), {114, 114, 114, 114}, {}, 5,
       L"Unable to connect to the server. Try later.", L"TavrinE Online Backup"},
      {"network failure logs in again and retries",
       EngineScenario().On(114).Info(-504).Then().Output(1).WithFile("Quota.txt", "1\r\n2\r\n")
           .On(116).Output(402),
       {114, 116, 114}, {100}, 2, nullptr, nullptr},
      {"changed password", EngineScenario().On(114).Info(-403), {114}, {}, 5,
       L"website.Please log out", L"TavrinE Online Backup failure"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    install_.Restart(c.scenario);
    testing::WriteFileBytes(platform::ToFsPath(UserFolder()) / "LoginProgress.txt", "1");
    clock_.ClearPauses();
    const std::size_t boxes_before = ui_.boxes().size();
    double max_size = 5, used = 5;
    EXPECT_EQ(clsAPI_Interface().API_GetQuota(max_size, used), 0);
    EXPECT_EQ(install_.Codes(), c.codes);
    EXPECT_EQ(clock_.pauses(), c.pauses);
    EXPECT_EQ(max_size, c.max_size);
    ASSERT_EQ(ui_.boxes().size(), boxes_before + (c.box ? 1 : 0));
    if (c.box) {
      EXPECT_EQ(ui_.boxes().back().title, c.title);
      EXPECT_NE(ui_.boxes().back().text.find(c.box), std::wstring::npos);
    }
    EXPECT_EQ(fs::exists(platform::ToFsPath(UserFolder()) / "LoginProgress.txt"),
              c.codes.size() != 4);
  }
}

// The session window shows the last figures read, with their time; a failed
// read keeps them, and another thread has its own.
TEST_F(Quota, TheLastReadingIsKeptWithItsTimeOnItsThread) {
  EXPECT_FALSE(LastQuota());
  const platform::LocalTime first{2026, 11, 25, 17, 42, 5, 0};
  clock_.SetNow(first);
  install_.Restart(EngineScenario().On(114).Output(0).WithFile("Quota.txt", "1181116006\r\n2147483648\r\n"));
  double max_size = 0, used = 0;
  clsAPI_Interface().API_GetQuota(max_size, used);
  ASSERT_TRUE(LastQuota());
  EXPECT_EQ(LastQuota()->used_bytes, 1181116006.0);
  EXPECT_EQ(LastQuota()->total_bytes, 2147483648.0);
  EXPECT_EQ(LastQuota()->read_at.hour, 17);
  EXPECT_EQ(LastQuota()->read_at.minute, 42);

  clock_.SetNow({2026, 11, 25, 18, 0, 0, 0});
  for (const EngineScenario& failing :
       {EngineScenario().On(114).Info(-416), EngineScenario().On(114).Info(-403),
        EngineScenario().On(114).Output(0)}) {
    install_.Restart(failing);
    clsAPI_Interface().API_GetQuota(max_size, used);
    ASSERT_TRUE(LastQuota());
    EXPECT_EQ(LastQuota()->used_bytes, 1181116006.0);
    EXPECT_EQ(LastQuota()->read_at.hour, 17);
  }

  bool other_thread_has_one = true;
  std::thread([&] { other_thread_has_one = LastQuota().has_value(); }).join();
  EXPECT_FALSE(other_thread_has_one);
}

}  // namespace
}  // namespace tavrine::operations
