#include "com/class_factory.h"

#include <atomic>
#include <new>

#include "com/module.h"

namespace tavrine::com {
namespace {

// One generic factory: everything class-specific is the create function.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(CreateFunction create) noexcept : create_(create) { ModuleAddRef(); }
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
      *out = static_cast<IClassFactory*>(this);
      AddRef();
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG remaining = --references_;
    if (remaining == 0) delete this;
    return remaining;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return create_(iid, out);
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock)
      ModuleAddRef();
    else
      ModuleRelease();
    return S_OK;
  }

 private:
  ~ClassFactory() { ModuleRelease(); }

  CreateFunction create_;
  std::atomic<ULONG> references_{1};
};

}  // namespace

HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** out) noexcept {
  if (!out) return E_POINTER;
  *out = nullptr;
  std::ptrdiff_t index = FindClassByClsid(clsid);
  if (index < 0) return CLASS_E_CLASSNOTAVAILABLE;
  auto* factory = new (std::nothrow) ClassFactory(Classes()[static_cast<std::size_t>(index)].create);
  if (!factory) return E_OUTOFMEMORY;
  HRESULT hr = factory->QueryInterface(iid, out);
  factory->Release();
  return hr;
}

}  // namespace tavrine::com
