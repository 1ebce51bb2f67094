#pragma once
#include <cstdint>
#include <memory>

namespace tavrine::platform {

// Storage with one value per thread, destroyed when its thread ends.
//
// The library's per-thread state lives here rather than in thread_local
// objects: the Windows build's runtime can free a thread's thread_local
// block before it runs the destructors of the objects in it, which corrupts
// the heap when a host's thread ends.
class ThreadSlot {
 public:
  struct Value {
    virtual ~Value() = default;
  };

  ThreadSlot();  // throws std::runtime_error when the system has no slot left
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  // This thread's value, or null before the first Set.
  Value* Get() const noexcept;
  // Hands this thread's value to the slot (the one before is destroyed);
  // throws std::bad_alloc, destroying `value`, when it cannot be stored.
  void Set(std::unique_ptr<Value> value);

 private:
  std::uintptr_t index_;
};

// A T per thread, made on first use, destroyed with its thread.
template <class T>
class PerThread {
 public:
  T& Get() {
    if (auto* boxed = static_cast<Boxed*>(slot_.Get())) return boxed->object;
    auto boxed = std::make_unique<Boxed>();
    T& object = boxed->object;
    slot_.Set(std::move(boxed));
    return object;
  }

 private:
  struct Boxed : ThreadSlot::Value {
    T object{};
  };
  ThreadSlot slot_;
};

}  // namespace tavrine::platform
