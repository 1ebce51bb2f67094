#pragma once
// IUnknown and IDispatch written once for every class: the object counts in the
// module count while alive, and IDispatch forwards to the type library's
// description of the interface, so vtable and by-name callers reach the same
// methods.
#include <windows.h>
#include <oleauto.h>

#include <atomic>
#include <new>

#include "com/com_ptr.h"
#include "com/module.h"
#include "com/type_library.h"

namespace tavrine::com {

template <class Derived, class Interface, const IID& kIid>
class DispatchObject : public Interface {
 public:
  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  // Creates an object and hands out `iid` from it (the create function of the
  // class table).
  static HRESULT Create(REFIID iid, void** out) noexcept {
    if (!out) return E_POINTER;
    *out = nullptr;
    Derived* object = new (std::nothrow) Derived();
    if (!object) return E_OUTOFMEMORY;
    HRESULT hr = object->QueryInterface(iid, out);
    object->Release();  // drops the creation reference
    return hr;
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, kIid)) {
      *out = static_cast<Interface*>(this);
      this->AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG remaining = --references_;
    if (remaining == 0) delete static_cast<Derived*>(this);
    return remaining;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    return GetInterfaceTypeInfo(kIid, out);
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    ComPtr<ITypeInfo> info;
    HRESULT hr = GetInterfaceTypeInfo(kIid, info.put());
    if (FAILED(hr)) return hr;
    return DispGetIDsOfNames(info.get(), names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                      EXCEPINFO* exception, UINT* arg_error) override {
    if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    ComPtr<ITypeInfo> info;
    HRESULT hr = GetInterfaceTypeInfo(kIid, info.put());
    if (FAILED(hr)) return hr;
    return DispInvoke(static_cast<Interface*>(this), info.get(), member, flags, params, result, exception,
                      arg_error);
  }

 protected:
  DispatchObject() noexcept { ModuleAddRef(); }
  ~DispatchObject() { ModuleRelease(); }

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace tavrine::com
