#include "platform/module_folder.h"

#include <gtest/gtest.h>

#include "platform/path.h"
#include "platform/services.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

TEST(ModuleFolder, IsTheFolderOfTheProgramHoldingTheCode) {
  std::wstring folder = ModuleFolder();
  ASSERT_FALSE(folder.empty());
  EXPECT_NE(folder.back(), kPathSeparator);
  EXPECT_TRUE(std::filesystem::equivalent(ToFsPath(folder), testing::TestProgramFolder()));
}

TEST(ModuleFolder, ServicesOverrideItForTheirLifetime) {
  std::wstring real = ModuleFolder();
  {
    Services replacement;
    replacement.module_folder = L"/elsewhere/install";
    ScopedServices scoped(replacement);
    EXPECT_EQ(ModuleFolder(), L"/elsewhere/install");
  }
  EXPECT_EQ(ModuleFolder(), real);
}

}  // namespace
}  // namespace tavrine::platform
