#include "platform/thread_slot.h"

#include <pthread.h>

#include <new>
#include <stdexcept>

namespace tavrine::platform {

namespace {

extern "C" void DestroyThreadValue(void* value) { delete static_cast<ThreadSlot::Value*>(value); }

pthread_key_t Key(std::uintptr_t index) { return static_cast<pthread_key_t>(index); }

}  // namespace

ThreadSlot::ThreadSlot() : index_(0) {
  pthread_key_t key;
  if (pthread_key_create(&key, DestroyThreadValue) != 0) throw std::runtime_error("no thread slot left");
  index_ = static_cast<std::uintptr_t>(key);
}

ThreadSlot::~ThreadSlot() {
  // Other threads' values outlive the key only at process exit.
  delete Get();
  pthread_key_delete(Key(index_));
}

ThreadSlot::Value* ThreadSlot::Get() const noexcept {
  return static_cast<Value*>(pthread_getspecific(Key(index_)));
}

void ThreadSlot::Set(std::unique_ptr<Value> value) {
  Value* before = Get();
  if (pthread_setspecific(Key(index_), value.get()) != 0) throw std::bad_alloc();
  value.release();
  delete before;
}

}  // namespace tavrine::platform
