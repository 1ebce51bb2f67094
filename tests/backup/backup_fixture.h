#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "backup/compare_harness.h"
#include "operations/session_fixture.h"
#include "platform/path.h"
#include "profile/profile_store.h"

namespace tavrine::testing {

// The session fixture plus the compare program beside the engine and a
// caller-made exchange folder for the backup.
class BackupTest : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    InstallCompareProgram(install_.path());
    folder_ = CallerFolder(L"backup run");
  }
  std::filesystem::path Folder() const { return platform::ToFsPath(folder_); }
  std::filesystem::path ScheduleFile(const char* name) const {
    return platform::ToFsPath(UserFolder()) / name;
  }
  void SetScheduleData(const std::string& bytes) const {
    WriteFileBytes(ScheduleFile("scheduleData.txt"), bytes);
  }
  static std::wstring Profile(const wchar_t* name) { return profile::GetUserProfile(name); }
  // Whatever ends a backup before its upload leaves the schedule resumed.
  void ExpectScheduleResumed() const {
    EXPECT_FALSE(std::filesystem::exists(ScheduleFile("schedulerStatus.txt")));
    EXPECT_EQ(Profile(L"UPLOAD"), L"FASLE");
    EXPECT_EQ(Profile(L"IsUploadStarted"), L"FALSE");
  }

  std::wstring folder_;
};

}  // namespace tavrine::testing
