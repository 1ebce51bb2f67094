#include "platform/secret_protector.h"

#include <gtest/gtest.h>

namespace tavrine::platform {
namespace {

TEST(SecretProtector, GivesBackExactlyWhatItProtected) {
  const std::wstring secrets[] = {L"", L"a", L"hunter2", std::wstring(L"nul\0in", 6),
                                  L"J\u00FCrgen \u20AC \u0416", L"x\U0001F600y",
                                  std::wstring(5000, L's')};
  for (const std::wstring& secret : secrets) {
    std::optional<std::wstring> stored = ProtectSecret(secret);
    ASSERT_TRUE(stored) << ::testing::PrintToString(secret);
    EXPECT_EQ(UnprotectSecret(*stored), secret) << ::testing::PrintToString(secret);
  }
}

}  // namespace
}  // namespace tavrine::platform
