#include "platform/thread_slot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace tavrine::platform {
namespace {

std::atomic<int> destroyed{0};

struct Counted {
  std::wstring owner;
  ~Counted() { ++destroyed; }
};

// All values of a thread share one slot: each object's stays apart, all go
// when the thread ends, and an object that goes takes this thread's with it.
TEST(ThreadSlot, EachThreadHasItsOwnValuesDestroyedWhenTheThreadEnds) {
  PerThread<Counted> state;
  auto other = std::make_unique<PerThread<Counted>>();
  state.Get().owner = L"main";
  other->Get().owner = L"other";
  destroyed = 0;
  std::vector<std::thread> threads;
  std::vector<std::wstring> seen(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      // A fresh value on a new thread, long enough to live on the heap.
      seen[i] = state.Get().owner;
      state.Get().owner = L"thread number " + std::to_wstring(i) + L" with a long name";
      other->Get().owner = L"x";
      seen[i] += L"|" + state.Get().owner;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(destroyed, 8);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(seen[i], L"|thread number " + std::to_wstring(i) + L" with a long name");
  EXPECT_EQ(state.Get().owner + other->Get().owner, L"mainother");
  other.reset();
  EXPECT_EQ(destroyed, 9);
}

TEST(ThreadSlot, SettingAgainReplacesAndDestroysTheEarlierValue) {
  ThreadSlot slot;
  destroyed = 0;
  struct Boxed : ThreadSlot::Value {
    Counted counted;
  };
  EXPECT_EQ(slot.Get(), nullptr);
  slot.Set(std::make_unique<Boxed>());
  ThreadSlot::Value* first = slot.Get();
  slot.Set(std::make_unique<Boxed>());
  EXPECT_EQ(destroyed, 1);
  EXPECT_NE(slot.Get(), nullptr);
  EXPECT_NE(slot.Get(), first);
}

}  // namespace
}  // namespace tavrine::platform
