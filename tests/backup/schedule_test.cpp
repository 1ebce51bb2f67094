#include <gtest/gtest.h>

#include "backup/backup_fixture.h"
#include "contract/c_backup.h"

namespace tavrine::contract {
namespace {

namespace fs = std::filesystem;
using testing::BackupTest;

using ScheduleControl = BackupTest;

TEST_F(ScheduleControl, RunningMeansLineOneIsThereAndNotZero) {
  struct Case {
    const char* data;    // nullptr: no file
    const char* paused;  // schedulerStatus.txt after a stop; nullptr: not running
  } cases[] = {{nullptr, nullptr}, {"", nullptr}, {"0\r\n", nullptr}, {"0\r\n77\r\n", nullptr},
               {" 0 \r\n", nullptr}, {"17\r\njob\r\n", "PAUSE\r\n17\r\njob\r\n"},
               {"17", "PAUSE\r\n17\r\n\r\n"},  // both lines, the second empty
               {"x\r\n", "PAUSE\r\nx\r\n\r\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data ? c.data : "(none)");
    fs::remove(ScheduleFile("scheduleData.txt"));
    if (c.data) SetScheduleData(c.data);
    const bool running = c.paused != nullptr;
    EXPECT_EQ(CBackup().IsScheduleBackupRunning(L"alice"), running);
    EXPECT_EQ(CBackup().IsScheduleBackupRunning(L""), running);  // the current user
    clock_.ClearPauses();
    EXPECT_EQ(CBackup().StopScheduleBackup(L"alice"), running ? 1 : 0);
    EXPECT_EQ(fs::exists(ScheduleFile("schedulerStatus.txt")), running);
    EXPECT_EQ(testing::ReadFileBytes(ScheduleFile("schedulerStatus.txt")), running ? c.paused : "");
    EXPECT_EQ(clock_.CountPauses(1000), running ? 1u : 0u);
    fs::remove(ScheduleFile("schedulerStatus.txt"));
  }
}

TEST_F(ScheduleControl, ProfileValuesPerMethod) {
  CBackup backup;
  EXPECT_EQ(backup.DisableScheduleBackup(L"alice"), 1);
  EXPECT_EQ(Profile(L"UPLOAD"), L"TRUE");
  EXPECT_EQ(Profile(L"IsUploadStarted"), L"FALSE");

  profile::UpdateUserProfile(L"CLASSIC_SESSION", L"TRUE");
  EXPECT_EQ(backup.ResetConfigurations(L"alice"), 1);
  ExpectScheduleResumed();
  EXPECT_EQ(Profile(L"CLASSIC_SESSION"), L"FALSE");

  // Enable withdraws a pause and resets; without a pause it is still done, and harmless.
  SetScheduleData("17\r\njob\r\n");
  backup.StopScheduleBackup(L"alice");
  backup.DisableScheduleBackup(L"alice");
  EXPECT_EQ(backup.EnableScheduleBackup(L"alice"), 1);
  ExpectScheduleResumed();
  EXPECT_EQ(backup.EnableScheduleBackup(L"alice"), 1);

  // Another user's values are theirs alone.
  EXPECT_EQ(backup.DisableScheduleBackup(L"bob"), 1);
  EXPECT_EQ(profile::ProfileStore::ForCurrentInstallation().GetForUser(L"bob", L"UPLOAD"), L"TRUE");
  EXPECT_EQ(Profile(L"UPLOAD"), L"FASLE");
}

TEST_F(ScheduleControl, UnsafeUserNamesTouchNothing) {
  SetScheduleData("17\r\njob\r\n");
  for (const wchar_t* user : {L"..", L"a/b", L"..\\alice", L"CON"}) {
    CBackup backup;
    EXPECT_EQ(backup.DisableScheduleBackup(user), 0);
    EXPECT_EQ(backup.StopScheduleBackup(user), 0);
    EXPECT_FALSE(backup.IsScheduleBackupRunning(user));
    EXPECT_EQ(backup.EnableScheduleBackup(user), 0);
  }
  EXPECT_FALSE(fs::exists(ScheduleFile("schedulerStatus.txt")));
  EXPECT_EQ(Profile(L"UPLOAD"), L"");
  EXPECT_NE(TraceText().find("refused user name"), std::string::npos);
}

}  // namespace
}  // namespace tavrine::contract
