#pragma once
#include <windows.h>

#include <utility>

namespace tavrine::platform::win32 {

// Owns a kernel handle. `kEmpty` is the handle kind's own "none" value:
// null for processes, INVALID_HANDLE_VALUE for snapshots and files.
template <HANDLE (*kEmpty)()>
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(HANDLE handle) : handle_(handle) {}
  ~UniqueHandle() { Reset(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  HANDLE get() const { return handle_; }
  bool valid() const { return handle_ != kEmpty(); }
  HANDLE Release() { return std::exchange(handle_, kEmpty()); }
  void Reset(HANDLE handle = kEmpty()) {
    if (valid()) CloseHandle(handle_);
    handle_ = handle;
  }

 private:
  HANDLE handle_ = kEmpty();
};

inline HANDLE NullHandle() { return nullptr; }
inline HANDLE InvalidHandle() { return INVALID_HANDLE_VALUE; }

using UniqueProcessHandle = UniqueHandle<NullHandle>;
using UniqueSnapshotHandle = UniqueHandle<InvalidHandle>;

}  // namespace tavrine::platform::win32
