#pragma once
// One small owning type per kind of COM/Win32 resource: each knows its own
// "empty" value and how to free it, so no code path forgets a release.
#include <windows.h>
#include <objbase.h>
#include <oaidl.h>
#include <oleauto.h>

#include <new>
#include <string_view>
#include <utility>

namespace tavrine::com {

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

// A BSTR owned by this object (SysFreeString on destruction).
class UniqueBstr {
 public:
  UniqueBstr() noexcept = default;
  explicit UniqueBstr(BSTR adopt) noexcept : value_(adopt) {}
  UniqueBstr(UniqueBstr&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
  UniqueBstr& operator=(UniqueBstr&& other) noexcept {
    if (this != &other) reset(std::exchange(other.value_, nullptr));
    return *this;
  }
  UniqueBstr(const UniqueBstr&) = delete;
  UniqueBstr& operator=(const UniqueBstr&) = delete;
  ~UniqueBstr() { reset(); }

  BSTR get() const noexcept { return value_; }
  BSTR* put() noexcept {
    reset();
    return &value_;
  }
  // For an [in, out] argument: the callee may replace the string in place.
  BSTR* addressof() noexcept { return &value_; }
  BSTR release() noexcept { return std::exchange(value_, nullptr); }
  void reset(BSTR replacement = nullptr) noexcept {
    if (BSTR old = std::exchange(value_, replacement)) SysFreeString(old);
  }
  std::wstring_view view() const noexcept {
    return value_ ? std::wstring_view(value_, SysStringLen(value_)) : std::wstring_view();
  }

 private:
  BSTR value_ = nullptr;
};

// A new BSTR holding text (embedded nulls kept); throws std::bad_alloc.
inline UniqueBstr MakeBstr(std::wstring_view text) {
  BSTR value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (!value) throw std::bad_alloc();
  return UniqueBstr(value);
}

// A registry key handle; nullptr is its empty value.
class UniqueHkey {
 public:
  UniqueHkey() noexcept = default;
  explicit UniqueHkey(HKEY adopt) noexcept : key_(adopt) {}
  UniqueHkey(UniqueHkey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  UniqueHkey& operator=(UniqueHkey&& other) noexcept {
    if (this != &other) reset(std::exchange(other.key_, nullptr));
    return *this;
  }
  UniqueHkey(const UniqueHkey&) = delete;
  UniqueHkey& operator=(const UniqueHkey&) = delete;
  ~UniqueHkey() { reset(); }

  HKEY get() const noexcept { return key_; }
  HKEY* put() noexcept {
    reset();
    return &key_;
  }
  void reset(HKEY replacement = nullptr) noexcept {
    if (HKEY old = std::exchange(key_, replacement)) RegCloseKey(old);
  }

 private:
  HKEY key_ = nullptr;
};

// A VARIANT cleared on destruction.
class UniqueVariant {
 public:
  UniqueVariant() noexcept { VariantInit(&value_); }
  UniqueVariant(const UniqueVariant&) = delete;
  UniqueVariant& operator=(const UniqueVariant&) = delete;
  ~UniqueVariant() { VariantClear(&value_); }

  VARIANT* get() noexcept { return &value_; }
  const VARIANT* get() const noexcept { return &value_; }
  VARIANT* put() noexcept {
    VariantClear(&value_);
    return &value_;
  }
  // Moves the value out to a caller-owned VARIANT, leaving this one empty.
  void Detach(VARIANT* target) noexcept {
    *target = value_;
    VariantInit(&value_);
  }

 private:
  VARIANT value_;
};

// The TYPEATTR of a type description, released with it.
class ScopedTypeAttr {
 public:
  explicit ScopedTypeAttr(ITypeInfo* info) noexcept : info_(info) {
    if (FAILED(info_->GetTypeAttr(&attr_))) attr_ = nullptr;
  }
  ScopedTypeAttr(const ScopedTypeAttr&) = delete;
  ScopedTypeAttr& operator=(const ScopedTypeAttr&) = delete;
  ~ScopedTypeAttr() {
    if (attr_) info_->ReleaseTypeAttr(attr_);
  }
  const TYPEATTR* get() const noexcept { return attr_; }
  const TYPEATTR* operator->() const noexcept { return attr_; }
  explicit operator bool() const noexcept { return attr_ != nullptr; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attr_ = nullptr;
};

// A FUNCDESC or VARDESC of a type description, released with it.
class ScopedFuncDesc {
 public:
  ScopedFuncDesc(ITypeInfo* info, UINT index) noexcept : info_(info) {
    if (FAILED(info_->GetFuncDesc(index, &desc_))) desc_ = nullptr;
  }
  ScopedFuncDesc(const ScopedFuncDesc&) = delete;
  ScopedFuncDesc& operator=(const ScopedFuncDesc&) = delete;
  ~ScopedFuncDesc() {
    if (desc_) info_->ReleaseFuncDesc(desc_);
  }
  const FUNCDESC* operator->() const noexcept { return desc_; }
  explicit operator bool() const noexcept { return desc_ != nullptr; }

 private:
  ITypeInfo* info_;
  FUNCDESC* desc_ = nullptr;
};

class ScopedVarDesc {
 public:
  ScopedVarDesc(ITypeInfo* info, UINT index) noexcept : info_(info) {
    if (FAILED(info_->GetVarDesc(index, &desc_))) desc_ = nullptr;
  }
  ScopedVarDesc(const ScopedVarDesc&) = delete;
  ScopedVarDesc& operator=(const ScopedVarDesc&) = delete;
  ~ScopedVarDesc() {
    if (desc_) info_->ReleaseVarDesc(desc_);
  }
  const VARDESC* operator->() const noexcept { return desc_; }
  explicit operator bool() const noexcept { return desc_ != nullptr; }

 private:
  ITypeInfo* info_;
  VARDESC* desc_ = nullptr;
};

}  // namespace tavrine::com
