#pragma once
// Interface pointers and COM apartments. A pointer is shared by reference
// count (AddRef/Release), unlike the single owners of unique_owners.h.
#include <windows.h>
#include <objbase.h>

#include <utility>

namespace tavrine::platform::win32 {

// COM for this thread for a scope (single-threaded apartment); a thread that
// has COM already keeps it, and only a successful start is undone.
class ComApartment {
 public:
  ComApartment() noexcept : hr_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(hr_)) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  bool ok() const noexcept { return SUCCEEDED(hr_); }

 private:
  HRESULT hr_;
};

// An interface pointer that releases on destruction. put() hands out the
// address for an out-parameter after dropping what was held.
template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  explicit ComPtr(T* adopt) noexcept : ptr_(adopt) {}
  ComPtr(const ComPtr& other) noexcept : ptr_(other.ptr_) {
    if (ptr_) ptr_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(ptr_, other.ptr_);
    return *this;
  }
  ~ComPtr() { reset(); }

  T* get() const noexcept { return ptr_; }
  T* operator->() const noexcept { return ptr_; }
  explicit operator bool() const noexcept { return ptr_ != nullptr; }
  T** put() noexcept {
    reset();
    return &ptr_;
  }
  void** put_void() noexcept { return reinterpret_cast<void**>(put()); }
  T* detach() noexcept { return std::exchange(ptr_, nullptr); }
  void reset() noexcept {
    if (T* old = std::exchange(ptr_, nullptr)) old->Release();
  }

  template <class U>
  HRESULT As(REFIID iid, ComPtr<U>& out) const noexcept {
    if (!ptr_) return E_POINTER;
    return ptr_->QueryInterface(iid, out.put_void());
  }

 private:
  T* ptr_ = nullptr;
};

}  // namespace tavrine::platform::win32
