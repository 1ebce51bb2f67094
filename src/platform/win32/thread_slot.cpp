#include "platform/thread_slot.h"

#include <windows.h>

#include <new>
#include <stdexcept>

namespace tavrine::platform {

namespace {

// Fiber-local storage calls this when a thread ends and, for every thread's
// value, when the slot is freed as the library unloads.
void NTAPI DestroyThreadValue(void* value) { delete static_cast<ThreadSlot::Value*>(value); }

DWORD Index(std::uintptr_t index) { return static_cast<DWORD>(index); }

}  // namespace

ThreadSlot::ThreadSlot() : index_(FLS_OUT_OF_INDEXES) {
  DWORD index = FlsAlloc(DestroyThreadValue);
  if (index == FLS_OUT_OF_INDEXES) throw std::runtime_error("no thread slot left");
  index_ = index;
}

ThreadSlot::~ThreadSlot() { FlsFree(Index(index_)); }

ThreadSlot::Value* ThreadSlot::Get() const noexcept {
  return static_cast<Value*>(FlsGetValue(Index(index_)));
}

void ThreadSlot::Set(std::unique_ptr<Value> value) {
  Value* before = Get();
  if (!FlsSetValue(Index(index_), value.get())) throw std::bad_alloc();
  value.release();
  delete before;
}

}  // namespace tavrine::platform
