#include "foundation/trace_log.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "foundation/configuration.h"
#include "platform/path.h"
#include "support/install_folder.h"

namespace tavrine::foundation {
namespace {

using testing::InstallFolder;
using testing::ReadFileBytes;

std::filesystem::path LogFile(const InstallFolder& install, const std::string& name) {
  return install.path() / "Log" / name;
}

TEST(Trace, EntriesMakeTheLogFolderAndAppendDatedLinesAnEmptyMessageKeepingItsBlank) {
  InstallFolder install;
  install.WriteStandardConfiguration();
  install.clock().SetNow({2011, 7, 4, 18, 5, 9, 0});
  Trace(L"first");
  EXPECT_EQ(ReadFileBytes(LogFile(install, "TavrinETestUI.txt")), "07-04-2011 18:05:09 first\r\n");
  install.clock().SetNow({2024, 12, 31, 3, 4, 5, 0});
  Trace(L"");
  // Exception lines carry their prefixes.
  TraceException(L"API_GetQuota", L"boom");
  TraceException(L"clsClient", L"WriteDLLInputFile", L"File not found");
  TraceException(L"API_REMOTE", L"");
  EXPECT_EQ(ReadFileBytes(LogFile(install, "TavrinETestUI.txt")),
            "07-04-2011 18:05:09 first\r\n12-31-2024 03:04:05 \r\n"
            "12-31-2024 03:04:05 [EXCEPTION] API_GetQuota() : boom\r\n"
            "12-31-2024 03:04:05 [EXCEPTION] clsClient :: WriteDLLInputFile() : File not found\r\n"
            "12-31-2024 03:04:05 [EXCEPTION] API_REMOTE() : \r\n");
}

TEST(Trace, InstallationNameIsReadAfreshOnEveryWriteAndItsFoldersAreMade) {
  const std::string sep(1, static_cast<char>(platform::kPathSeparator));
  const struct {
    std::string name;
    std::filesystem::path file;  // under Log
  } rows[] = {
      {"Other", "OtherUI.txt"},
      {"Brand" + sep + "Sub", std::filesystem::path("Brand") / "SubUI.txt"},
  };
  for (const auto& row : rows) {
    InstallFolder install;
    install.WriteStandardConfiguration();
    ASSERT_TRUE(LoadConfigurations());
    install.WriteConfiguration("[ProductInfo]\r\nProductInstallationName=" + row.name + "\r\n");
    Trace(L"x");
    EXPECT_FALSE(ReadFileBytes(install.path() / "Log" / row.file).empty()) << row.name;
  }
}

TEST(Trace, AnUnwritableLogIsLostSilently) {
  InstallFolder install;
  // A file where the Log folder should be: nothing can be created below it.
  testing::WriteFileBytes(install.path() / "Log", "not a folder");
  EXPECT_NO_THROW(Trace(L"lost"));
  EXPECT_EQ(ReadFileBytes(install.path() / "Log"), "not a folder");
}

TEST(DescribeCurrentException, UsesTheRuntimeDescription) {
  try {
    throw std::runtime_error("disk full");
  } catch (...) {
    EXPECT_EQ(DescribeCurrentException(), L"disk full");
  }
  try {
    throw 42;
  } catch (...) {
    EXPECT_EQ(DescribeCurrentException(), L"Unknown error");
  }
}

}  // namespace
}  // namespace tavrine::foundation
