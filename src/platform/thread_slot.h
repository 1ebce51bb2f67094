#pragma once
#include <cstddef>
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

// Every PerThread value of a thread lives in one slot, so that a thread's end
// frees all of them in one place (in the reverse order of their PerThread
// objects) and no layer's state needs a slot of its own. Ids are never reused.
namespace thread_values {
std::size_t NewId();
ThreadSlot::Value* Find(std::size_t id) noexcept;
// Throws std::bad_alloc, destroying `value`, when it cannot be stored.
void Store(std::size_t id, std::unique_ptr<ThreadSlot::Value> value);
void Drop(std::size_t id) noexcept;
}  // namespace thread_values

// A T per thread, made on first use, destroyed with its thread (and, for the
// thread that destroys this object, with the object).
template <class T>
class PerThread {
 public:
  PerThread() : id_(thread_values::NewId()) {}
  ~PerThread() { thread_values::Drop(id_); }
  PerThread(const PerThread&) = delete;
  PerThread& operator=(const PerThread&) = delete;

  T& Get() {
    if (auto* boxed = static_cast<Boxed*>(thread_values::Find(id_))) return boxed->object;
    auto boxed = std::make_unique<Boxed>();
    T& object = boxed->object;
    thread_values::Store(id_, std::move(boxed));
    return object;
  }

 private:
  struct Boxed : ThreadSlot::Value {
    T object{};
  };
  std::size_t id_;
};

}  // namespace tavrine::platform
