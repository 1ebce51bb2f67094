#include "platform/unique_owner.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#ifdef _WIN32
#include "platform/win32/unique_owners.h"
#endif

namespace tavrine::platform {
namespace {

std::vector<int> closed;

// A kind like a file descriptor: -1 is "none", 0 is a real value.
struct Descriptor {
  using Value = int;
  static constexpr int Empty() noexcept { return -1; }
  static void Close(int value) noexcept { closed.push_back(value); }
};
using Owner = UniqueOwner<Descriptor>;

int RecordClose(int value) {
  closed.push_back(value);
  return 1;
}
using ZeroOwner = UniqueOwner<ZeroEmpty<int, &RecordClose>>;

class UniqueOwnerTest : public ::testing::Test {
 protected:
  void SetUp() override { closed.clear(); }
};

TEST_F(UniqueOwnerTest, ClosesWhatItHoldsOnceAndNeverTheEmptyValue) {
  {
    Owner zero(0);
    Owner none;
    Owner given_none(-1);
    EXPECT_TRUE(zero);
    EXPECT_FALSE(none);
    EXPECT_FALSE(given_none);
    EXPECT_EQ(none.get(), -1);
  }
  EXPECT_EQ(closed, std::vector<int>({0}));

  closed.clear();
  { ZeroOwner zero(0), seven(7); }
  EXPECT_EQ(closed, std::vector<int>({7}));
}

TEST_F(UniqueOwnerTest, MovingHandsOverAndAssigningClosesTheOldFirst) {
  {
    Owner first(3);
    Owner second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(second.get(), 3);
    EXPECT_TRUE(closed.empty());

    Owner third(5);
    third = std::move(second);
    EXPECT_EQ(closed, std::vector<int>({5}));
    EXPECT_EQ(third.get(), 3);
    EXPECT_EQ(second.get(), -1);

    Owner& alias = third;
    third = std::move(alias);
    EXPECT_EQ(third.get(), 3) << "moving onto itself keeps the value open";
  }
  EXPECT_EQ(closed, std::vector<int>({5, 3}));
}

TEST_F(UniqueOwnerTest, ResetReleaseAndPut) {
  Owner owner(1);
  owner.reset(2);
  EXPECT_EQ(closed, std::vector<int>({1}));
  EXPECT_EQ(owner.release(), 2);
  EXPECT_FALSE(owner);
  owner.reset();
  EXPECT_EQ(closed, std::vector<int>({1})) << "nothing held, nothing closed";

  owner.reset(4);
  int* out = owner.put();
  EXPECT_EQ(closed, std::vector<int>({1, 4}));
  EXPECT_EQ(*out, -1);
  *out = 8;
  *owner.addressof() = 9;  // a callee that replaces the value in place
  EXPECT_EQ(owner.get(), 9);
  EXPECT_EQ(closed, std::vector<int>({1, 4}));
}

#ifdef _WIN32
TEST_F(UniqueOwnerTest, WindowsKindsKnowTheirEmptyValueAndCloseTheHandle) {
  EXPECT_EQ(win32::UniqueFileHandle().get(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(win32::UniqueHandle().get(), nullptr);
  EXPECT_FALSE(win32::UniqueFileHandle(INVALID_HANDLE_VALUE));

  HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  ASSERT_NE(event, nullptr);
  win32::UniqueHandle owner(event);
  DWORD flags = 0;
  EXPECT_TRUE(GetHandleInformation(event, &flags));
  owner.reset();
  EXPECT_FALSE(GetHandleInformation(event, &flags)) << "the event was closed";

  win32::UniqueBstr text = win32::MakeBstr(std::wstring_view(L"a\0b", 3));
  EXPECT_EQ(text.view(), std::wstring_view(L"a\0b", 3));
  EXPECT_TRUE(win32::UniqueBstr().view().empty());
}
#endif

}  // namespace
}  // namespace tavrine::platform
