#include "platform/file_mapping.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/path.h"
#include "support/temp_folder.h"

namespace tavrine::platform {
namespace {

std::string Mapped(const FileMapping& mapping) {
  return std::string(reinterpret_cast<const char*>(mapping.data()), mapping.size());
}

TEST(FileMapping, MapsTheWholeFileAndNothingWhereThereIsNothingToMap) {
  testing::TempFolder temp;
  std::string bytes(70000, '\0');  // more than a page, not a whole number of them
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  testing::WriteFileBytes(temp.path() / "whole.bin", bytes);
  testing::WriteFileBytes(temp.path() / "empty.bin", "");

  FileMapping mapping;
  ASSERT_TRUE(mapping.Open(FromFsPath(temp.path() / "whole.bin")));
  EXPECT_EQ(Mapped(mapping), bytes);
  // Opening again drops the first view; a file that cannot be mapped leaves none.
  EXPECT_FALSE(mapping.Open(FromFsPath(temp.path() / "empty.bin")));
  EXPECT_EQ(mapping.data(), nullptr);
  EXPECT_EQ(mapping.size(), 0u);
  EXPECT_FALSE(mapping.Open(FromFsPath(temp.path() / "missing.bin")));
  EXPECT_FALSE(mapping.Open(temp.wpath()));  // a folder
  EXPECT_EQ(mapping.size(), 0u);
}

}  // namespace
}  // namespace tavrine::platform
