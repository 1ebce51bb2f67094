#include <atomic>
#include <vector>

#include "platform/thread_slot.h"

namespace tavrine::platform::thread_values {

namespace {

struct Values : ThreadSlot::Value {
  std::vector<std::unique_ptr<ThreadSlot::Value>> by_id;
  ~Values() override {
    while (!by_id.empty()) by_id.pop_back();
  }
};

// Made by the first PerThread's constructor, so it outlives every static
// PerThread; freeing it as the library unloads frees every thread's values.
ThreadSlot& Slot() {
  static ThreadSlot slot;
  return slot;
}

std::atomic<std::size_t> next_id{0};

}  // namespace

std::size_t NewId() {
  Slot();
  return next_id++;
}

ThreadSlot::Value* Find(std::size_t id) noexcept {
  auto* values = static_cast<Values*>(Slot().Get());
  if (!values || id >= values->by_id.size()) return nullptr;
  return values->by_id[id].get();
}

void Store(std::size_t id, std::unique_ptr<ThreadSlot::Value> value) {
  auto* values = static_cast<Values*>(Slot().Get());
  if (!values) {
    auto made = std::make_unique<Values>();
    values = made.get();
    Slot().Set(std::move(made));
  }
  if (id >= values->by_id.size()) values->by_id.resize(id + 1);
  values->by_id[id] = std::move(value);
}

void Drop(std::size_t id) noexcept {
  auto* values = static_cast<Values*>(Slot().Get());
  if (values && id < values->by_id.size()) values->by_id[id].reset();
}

}  // namespace tavrine::platform::thread_values
