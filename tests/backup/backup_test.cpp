#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "backup/backup_fixture.h"
#include "contract/c_backup.h"
#include "platform/services.h"
#include "support/fake_clock.h"
#include "support/install_folder.h"

namespace tavrine::contract {
namespace {

namespace fs = std::filesystem;
using testing::BackupTest;
using testing::EngineScenario;

// The listing step: an empty backup (-412) lets the compare go on.
EngineScenario EmptyListing() { return EngineScenario().On(115).Output(0); }

using CompareStep = BackupTest;

TEST_F(CompareStep, EachInputLineBecomesTwoRequestLines) {
  struct Case {
    const char* name;
    std::string input_list;
  };
  const Case cases[] = {
      {"ANSI", "C:\\Data\\\r\nC:\\Data\\a.txt\r\n\r\n\\\r\nD:\\\r\n"},
      {"UTF-16", testing::Utf16LeFile(L"C:\\Data\\\r\nC:\\Data\\a.txt\r\n\r\n\\\r\nD:\\\r\n")},
  };
  install_.SetScenario(EmptyListing());
  testing::WriteCompareScenario(install_.path(), "result 0\n");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    testing::WriteFileBytes(Folder() / "InputList.txt", c.input_list);
    EXPECT_EQ(CBackup().W_BackupInit(0, folder_), 0);
    auto runs = testing::ReadCompareJournal(install_.path());
    ASSERT_FALSE(runs.empty());
    EXPECT_EQ(runs.back().params, L"<" + folder_ + L"><1>");
    EXPECT_EQ(runs.back().request, testing::Utf16LeFile(L"C:\\Data\r\n1\r\nC:\\Data\\a.txt\r\n0\r\n"
                                                        L"\r\n0\r\n\r\n1\r\nD:\r\n1\r\n"));
  }
}

// A compare that fails gives -1 with a trace line; the next one is read as usual.
TEST_F(CompareStep, ResultComesFromTheFirstLineOfDllOutput1) {
  struct Case {
    const char* scenario;
    std::int32_t result;
    const char* trace;  // nullptr: none asserted
  } cases[] = {
      {"crash\n", -1, "BackupInit :: the compare program left no result"},
      {"result 0\n", 0, nullptr},
      {"result \x01\xff garbage\n", -1, "BackupInit :: compare result is not a number: "},
      {"result -3\n", -3, nullptr},
      {"hang\n", -1, "Engine run exceeded 2 s and was terminated"},
      {"exit 0\n", -1, "BackupInit :: the compare program left no result"},
      {"result 1\n", 1, nullptr}};
  install_.WriteFile(L"Configuration.ini", testing::StandardConfiguration("EngineTimeoutSeconds=2\r\n"));
  install_.SetScenario(EmptyListing());
  testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.scenario);
    testing::WriteCompareScenario(install_.path(), c.scenario);
    testing::WriteFileBytes(Folder() / "DLLOutput1.txt", "1\r\n");  // stale: must be cleared
    SetScheduleData("4242\r\nnightly\r\n");
    const std::size_t trace_before = TraceText().size();
    EXPECT_EQ(CBackup().W_BackupInit(0, folder_), c.result);
    if (c.trace) { EXPECT_NE(TraceText().find(c.trace, trace_before), std::string::npos) << c.trace; }
    if (c.result != 1) ExpectScheduleResumed();
  }
}

TEST_F(CompareStep, ListingFailureOrMissingInputStopsBeforeTheCompare) {
  struct Case {
    const char* name;
    EngineScenario listing;
    bool input_list;
    std::int32_t result;
  } cases[] = {
      {"busy server", EngineScenario().On(115).Info(-416), true, -416},
      {"listing failed", EngineScenario().On(115).Info(-12009), true, -12009},
      {"no input list", EmptyListing(), false, -1},
  };
  testing::WriteCompareScenario(install_.path(), "result 1\n");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    install_.SetScenario(c.listing);
    fs::remove(Folder() / "InputList.txt");
    if (c.input_list) testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
    SetScheduleData("4242\r\nnightly\r\n");
    EXPECT_EQ(CBackup().W_BackupInit(0, folder_), c.result);
    ExpectScheduleResumed();
  }
  EXPECT_TRUE(testing::ReadCompareJournal(install_.path()).empty());
}

// The wait itself (its slice, ending only that program) is the engine waits' test.
TEST_F(CompareStep, ACancelWhileTheCompareRunsEndsItAsCancelled) {
  install_.SetScenario(EmptyListing());
  testing::WriteCompareScenario(install_.path(), "hang\n");
  testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
  SetScheduleData("31\r\nnightly\r\n");
  std::thread canceller([&] {
    testing::WaitUntil([&] { return fs::exists(Folder() / "compare-heartbeat.txt"); });
    testing::WriteFileBytes(Folder() / "cancel.txt", "");
  });
  EXPECT_EQ(CBackup().W_BackupInit(0, folder_), 401);
  canceller.join();
  ExpectScheduleResumed();
}

using ManualBackup = BackupTest;

TEST_F(ManualBackup, PausesTheScheduleUntilTheExit) {
  install_.SetScenario(EmptyListing());
  testing::WriteCompareScenario(install_.path(), "result 1\n");
  testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
  SetScheduleData("4242\r\nnightly 02:00\r\n");
  CBackup backup;

  EXPECT_EQ(backup.W_BackupInit(7, folder_), 1);
  EXPECT_EQ(testing::ReadFileBytes(ScheduleFile("schedulerStatus.txt")),
            "PAUSE\r\n4242\r\nnightly 02:00\r\n");
  EXPECT_EQ(Profile(L"UPLOAD"), L"TRUE");
  EXPECT_EQ(Profile(L"IsUploadStarted"), L"FALSE");
  EXPECT_EQ(clock_.CountPauses(1000), 1u);
  EXPECT_EQ(clock_.CountPauses(2000), 1u);

  std::int32_t completed = 0;
  EXPECT_EQ(backup.W_DoBackup(completed), 1);
  EXPECT_EQ(completed, 1);
  EXPECT_EQ(Profile(L"IsUploadStarted"), L"TRUE");
  EXPECT_FALSE(Profile(L"TavrinEClientPID").empty());
  EXPECT_NE(Profile(L"TavrinEClientPID"), L"-1");
  ASSERT_TRUE(testing::WaitUntil([&] { return install_.Journal().size() == 2; }));
  EXPECT_EQ(install_.Journal()[1].code, 110);
  EXPECT_EQ(install_.Journal()[1].folder, folder_);

  EXPECT_EQ(backup.W_BackupExitInstance(), 1);
  ExpectScheduleResumed();
  EXPECT_EQ(Profile(L"CLASSIC_SESSION"), L"FALSE");
}

TEST_F(ManualBackup, UploadThatCannotStartOrIsCancelledLeavesNoUploadRecorded) {
  SetScheduleData("4242\r\nnightly\r\n");
  {
    SCOPED_TRACE("cancelled before the start");
    testing::WriteFileBytes(Folder() / "cancel.txt", "");
    CBackup backup;
    std::int32_t completed = -5;
    backup.DisableScheduleBackup(L"");
    EXPECT_EQ(backup.W_BackupInit(0, folder_), 401);
    EXPECT_FALSE(fs::exists(ScheduleFile("schedulerStatus.txt")));  // never paused
    EXPECT_EQ(backup.W_DoBackup(completed), 401);
    EXPECT_EQ(completed, -5);
    EXPECT_TRUE(install_.Journal().empty());
    ExpectScheduleResumed();
    fs::remove(Folder() / "cancel.txt");
  }
  {
    SCOPED_TRACE("upload engine gone after the compare");
    install_.SetScenario(EmptyListing());
    testing::WriteCompareScenario(install_.path(), "result 1\n");
    testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
    CBackup backup;
    ASSERT_EQ(backup.W_BackupInit(0, folder_), 1);
    ASSERT_TRUE(fs::exists(ScheduleFile("schedulerStatus.txt")));  // paused for the upload
    fs::remove(install_.path() / "TavrinEClsClient.exe");
    std::int32_t completed = 0;
    EXPECT_EQ(backup.W_DoBackup(completed), -1);
    ExpectScheduleResumed();
  }
}

// A clock that fails on the pause after the schedule was asked to pause.
class ClockFailingOnTheLongPause : public testing::FakeClock {
 public:
  void Sleep(std::uint32_t ms) override {
    FakeClock::Sleep(ms);
    if (ms == 2000) throw std::runtime_error("clock gone");
  }
};

TEST_F(ManualBackup, AFailureWhileTheScheduleIsPausedResumesItAndIsTracedOnce) {
  SetScheduleData("4242\r\nnightly\r\n");
  testing::WriteFileBytes(Folder() / "InputList.txt", "C:\\x.txt\r\n");
  ClockFailingOnTheLongPause failing;
  platform::Services seams;
  seams.clock = &failing;
  {
    platform::ScopedServices failing_clock(seams);
    EXPECT_EQ(CBackup().W_BackupInit(0, folder_), -1);
  }
  EXPECT_EQ(failing.CountPauses(1000), 1u);  // the pause was asked for
  EXPECT_TRUE(install_.Journal().empty());
  ExpectScheduleResumed();
  const std::string trace = TraceText();
  EXPECT_NE(trace.find("[EXCEPTION] DoBackupInit() : clock gone"), std::string::npos) << trace;
  EXPECT_EQ(trace.find("[EXCEPTION]"), trace.rfind("[EXCEPTION]")) << trace;
}

}  // namespace
}  // namespace tavrine::contract
