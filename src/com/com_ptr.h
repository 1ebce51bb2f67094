#pragma once
// The COM owners: interface pointers, apartments, BSTRs and registry keys come
// from platform/win32; VARIANTs and type-description parts are released here.
#include <windows.h>
#include <objbase.h>
#include <oaidl.h>
#include <oleauto.h>

#include "platform/win32/com_ptr.h"
#include "platform/win32/unique_owners.h"

namespace tavrine::com {

using platform::win32::ComApartment;
using platform::win32::ComPtr;
using platform::win32::MakeBstr;
using platform::win32::UniqueBstr;
using platform::win32::UniqueHkey;

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
