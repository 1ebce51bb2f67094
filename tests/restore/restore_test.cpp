#include <gtest/gtest.h>

#include <string>

#include "contract/c_restore.h"
#include "contract/cls_api_interface.h"
#include "foundation/shared_state.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/profile_store.h"
#include "session_fixture.h"
#include "support/slice_counting_launcher.h"

namespace tavrine::testing {
namespace {

using RestoreTest = SessionTest;

TEST_F(RestoreTest, RequestFilesPerHostCount) {
  struct Case {
    const wchar_t* host_count;
    const wchar_t* dest;
    const wchar_t* parent;
    std::wstring line3, line4, hosts;
    bool multiple;
  };
  const std::wstring two_hosts = L"PC1|0|1;PC2|0|1;";
  const Case cases[] = {
      {L"1", L"C:\\Restore\\", L"C:\\Data\\", L"C:\\Restore", L"C:\\Data", two_hosts, true},
      {L"1", L"C:\\Restore", L"\\", L"C:\\Restore", L"\\", two_hosts, true},
      {L"1", L"C:\\R", L"", L"C:\\R", L"", two_hosts, true},
      {L"2", L"C:\\R\\", L"pc2\\C:\\Data", L"C:\\R", L"C:\\Data", L"PC2|0|1;", true},
      // A computer the hosts do not name narrows them to none, not to the first.
      {L"2", L"C:\\R", L"PC9\\C:\\Data", L"C:\\R", L"C:\\Data", L";", true},
      {L"", L"C:\\R", L"C:\\Data\\", L"C:\\R", L"C:\\Data", L"alice|0;", false},
      {L"0", L"C:\\R", L"C:\\Data\\", L"C:\\R", L"C:\\Data", L"alice|0;", false},
  };
  int n = 0;
  for (const Case& c : cases) {
    profile::UpdateUserProfile(L"HostCount", c.host_count);
    const std::wstring folder = CallerFolder(L"restore" + std::to_wstring(n++));
    const std::wstring mpc = folder + platform::kPathSeparator + L"MPC.ini";
    platform::WriteIniString(L"MPC", L"Hosts", two_hosts, mpc);
    platform::WriteIniString(L"MPC", L"HostCount", L"2", mpc);
    install_.SetScenario(EngineScenario().On(123).Output(0));
    const std::size_t before = install_.Journal().size();
    clock_.ClearPauses();

    EXPECT_NE(contract::CRestore().W_Restore(c.dest, c.parent, folder), -1);
    // The library does not wait for the restore run; the test waits for its journal line.
    ASSERT_TRUE(WaitUntil([&] { return install_.Journal().size() == before + 1; }));
    auto runs = install_.Journal();
    EXPECT_EQ(runs.back().code, 123);
    const std::wstring dest_lines = L"0\r\n4\r\n" + c.line3 + L"\r\n" + c.line4 + L"\r\n";
    EXPECT_EQ(runs.back().restdestdir, Utf16LeFile(dest_lines)) << c.parent;
    EXPECT_EQ(platform::ReadIniString(L"MPC", L"Hosts", mpc), c.hosts) << c.host_count;
    EXPECT_EQ(platform::ReadIniString(L"MPC", L"HostCount", mpc), L"1");
    EXPECT_EQ(foundation::ThreadState().multiple_pc, c.multiple);
    EXPECT_EQ(clock_.pauses(), (std::vector<std::uint32_t>{2000}));
  }
}

TEST_F(RestoreTest, EngineThatCannotStartGivesMinusOne) {
  std::filesystem::remove(install_.path() / "TavrinEClsClient.exe");
  EXPECT_EQ(contract::CRestore().W_Restore(L"C:\\R", L"C:\\D", CallerFolder(L"x")), -1);
}

TEST_F(RestoreTest, VersionRetries) {
  struct Case {
    const char* name;
    EngineScenario scenario;
    std::int32_t result;
    std::vector<int> codes;
    std::size_t retry_pauses;  // of 100 ms, besides those between the version runs' slices
  };
  const Case cases[] = {
      {"three -416 answers", EngineScenario().On(113).Output(-416), -416, {113, 113, 113}, 3},
      {"-403 ends at once", EngineScenario().On(113).Output(-403), -403, {113}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    install_.Restart(c.scenario);
    clock_.ClearPauses();
    SliceCountingLauncher launcher;
    platform::ScopedServices counting({.launcher = &launcher, .module_folder = {}});
    EXPECT_EQ(contract::CRestore().W_GetVersions(L"C:\\Docs\\a.txt"), c.result);
    ASSERT_EQ(install_.Codes(), c.codes);
    EXPECT_EQ(clock_.pauses(), std::vector<std::uint32_t>(clock_.pauses().size(), 100u));
    std::size_t version_slices = 0;  // the login run waits without pauses
    for (std::size_t i = 0; i < c.codes.size(); ++i)
      if (c.codes[i] == 113) version_slices += static_cast<std::size_t>(launcher.RunningSlices(i));
    EXPECT_EQ(clock_.pauses().size() - version_slices, c.retry_pauses);
  }
  // Only -403 showed a box: the password-changed text with a stop icon.
  ASSERT_EQ(ui_.boxes().size(), 1u);
  EXPECT_NE(ui_.boxes()[0].text.find(L"change of password"), std::wstring::npos);
  EXPECT_EQ(ui_.boxes()[0].style & platform::kMbIconStop, platform::kMbIconStop);
}

TEST_F(RestoreTest, VersionsFolderIsTheMethodsOwn) {
  install_.SetScenario(EngineScenario().On(113).Output(402));
  std::wstring folder = L"given";
  EXPECT_EQ(contract::clsAPI_Interface().API_GETVERSIONS(L"C:\\a.txt", folder), 402);
  EXPECT_EQ(folder.rfind(TempRoot(), 0), 0u);
  EXPECT_EQ(install_.Journal().back().folder, folder);
}

}  // namespace
}  // namespace tavrine::testing
