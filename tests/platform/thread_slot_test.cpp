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

TEST(ThreadSlot, EachThreadHasItsOwnValueDestroyedWhenTheThreadEnds) {
  PerThread<Counted> state;
  state.Get().owner = L"main";
  destroyed = 0;
  std::vector<std::thread> threads;
  std::vector<std::wstring> seen(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      // A fresh value on a new thread, long enough to live on the heap.
      seen[i] = state.Get().owner;
      state.Get().owner = L"thread number " + std::to_wstring(i) + L" with a long name";
      seen[i] += L"|" + state.Get().owner;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(destroyed, 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(seen[i], L"|thread number " + std::to_wstring(i) + L" with a long name");
  EXPECT_EQ(state.Get().owner, L"main");
}

// All of a thread's values share one slot: each stays apart, all go when the
// thread ends, and an object that goes takes this thread's value with it.
TEST(ThreadSlot, ValuesOfSeveralObjectsStayApartAndEndTogether) {
  PerThread<Counted> first;
  auto second = std::make_unique<PerThread<Counted>>();
  destroyed = 0;
  std::wstring seen;
  std::thread([&] {
    first.Get().owner = L"first";
    second->Get().owner = L"second";
    seen = first.Get().owner + L"|" + second->Get().owner;
  }).join();
  EXPECT_EQ(seen, L"first|second");
  EXPECT_EQ(destroyed, 2);
  second->Get().owner = L"main";
  second.reset();
  EXPECT_EQ(destroyed, 3);
  EXPECT_EQ(first.Get().owner, L"");
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
