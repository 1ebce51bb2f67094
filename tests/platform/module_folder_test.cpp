#include "platform/module_folder.h"

#include <gtest/gtest.h>

#include "platform/path.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

TEST(ModuleFolder, IsTheFolderOfTheProgramHoldingTheCode) {
  std::wstring folder = ModuleFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_NE(folder.back(), kPathSeparator);
  EXPECT_TRUE(std::filesystem::equivalent(ToFsPath(folder), testing::TestProgramFolder()));
}

}  // namespace
}  // namespace tavrine::platform
