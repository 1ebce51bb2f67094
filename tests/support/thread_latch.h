#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tavrine::testing {

// Lets a fixed number of threads start a step together. A mutex and a
// condition variable, not std::latch/std::barrier: on mingw-w64 those wait in
// libstdc++'s waiter pool, which can miss a wake-up and leave a thread asleep
// for good. The wait is bounded, so a thread that never arrives fails the test
// instead of hanging it.
class ThreadLatch {
 public:
  explicit ThreadLatch(int count) : waiting_for_(count) {}
  ThreadLatch(const ThreadLatch&) = delete;
  ThreadLatch& operator=(const ThreadLatch&) = delete;

  // Counts this thread in and waits for the others; false when they did not
  // all arrive within `limit`.
  bool ArriveAndWait(std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    std::unique_lock lock(mutex_);
    if (waiting_for_ > 0 && --waiting_for_ == 0) all_arrived_.notify_all();
    return all_arrived_.wait_for(lock, limit, [this] { return waiting_for_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable all_arrived_;
  int waiting_for_;
};

}  // namespace tavrine::testing
