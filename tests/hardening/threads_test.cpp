// Two threads using the library at once, each with its own install folder,
// settings, profile, listing and enumeration: the per-thread state must keep
// them apart.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "browsing/browsing_state.h"
#include "contract/tavrine_enum.h"
#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/engine_harness.h"
#include "support/fake_clock.h"
#include "support/install_folder.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/thread_latch.h"

namespace tavrine::testing {
namespace {

// One thread's session: its user, its listing of `files` entries in folder
// C:\<user>\, walked `rounds` times while the other thread does the same.
struct Walker {
  std::wstring user;
  int files = 0;
  std::vector<std::wstring> failures;

  void Run(ThreadLatch& together, int rounds) {
    const std::wstring installation = L"TavrinETest" + user;
    // An installation of its own: on Windows the profile of an installation
    // is one registry key, shared by every thread of the process.
    EngineInstall install({.configuration_ini = StandardConfiguration(
        "EngineTimeoutSeconds=20\r\n", "English", platform::WideToUtf8(installation))});
    FakeClock clock;
    RecordingUi ui;
    platform::ScopedServices scoped({.clock = &clock, .ui = &ui, .module_folder = {}});
    foundation::LoadedConfiguration() = {};
    foundation::ThreadState() = {};
    profile::SetCurrentUserName(user);
    profile::UpdateUserProfile(L"username", user);
    profile::UpdateUserProfile(L"Count", L"0");
    std::wstring text;
    for (int i = 0; i < files; ++i)
      text += L"C:\\" + user + L"\\f" + std::to_wstring(i) + L".txt/1/10/01-31-2011 13:05:09/U\r\n";
    install.SetScenario(EngineScenario().On(119).Output(402).On(122).Output(402));
    WriteFileBytes(install.path() / platform::ToFsPath(installation + user) / "Backupfile.txt",
                   Utf16LeFile(text));

    if (!together.ArriveAndWait()) failures.push_back(L"the other thread never started");
    for (int round = 0; round < rounds; ++round) {
      contract::TavrinEenum enumeration;
      if (enumeration.TavrinEInit() != 1) failures.push_back(L"init failed");
      browsing::FindData data;
      int seen = 0;
      for (auto p = enumeration.TavrinEFindFirstFile(L"C:\\" + user + L"\\", data); p != -1;
           p = enumeration.TavrinENextFile(data))
        ++seen;
      if (seen != files) failures.push_back(L"saw " + std::to_wstring(seen));
      std::wstring current;
      enumeration.W_GetCurrentUser(current);
      if (current != user) failures.push_back(L"user " + current);
    }
    ResetProfileStore();
  }
};

TEST(Threads, TwoSessionsAtOnceKeepTheirOwnState) {
  Walker anna{L"anna", 3, {}}, bert{L"bert", 7, {}};
  ThreadLatch together(2);
  std::thread a([&] { anna.Run(together, 5); });
  std::thread b([&] { bert.Run(together, 5); });
  a.join();
  b.join();
  EXPECT_EQ(anna.failures, std::vector<std::wstring>{});
  EXPECT_EQ(bert.failures, std::vector<std::wstring>{});
}

}  // namespace
}  // namespace tavrine::testing
