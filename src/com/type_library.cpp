#include "com/type_library.h"

#include <windows.h>
#include <oleauto.h>

#include <array>

#include "com/class_table.h"
#include "com/com_ptr.h"
#include "com/module.h"

namespace tavrine::com {
namespace {

constexpr std::size_t kMaxInterfaces = 16;

ITypeLib* volatile g_library = nullptr;
std::array<ITypeInfo* volatile, kMaxInterfaces> g_type_infos{};

// Publishes `candidate` in `slot` unless another thread got there first; either
// way returns the published pointer AddRef'd for the caller.
template <class T>
T* Publish(T* volatile& slot, T* candidate) noexcept {
  void* previous = InterlockedCompareExchangePointer(reinterpret_cast<void* volatile*>(&slot), candidate,
                                                     nullptr);
  if (previous) {
    candidate->Release();
    static_cast<T*>(previous)->AddRef();
    return static_cast<T*>(previous);
  }
  candidate->AddRef();
  return candidate;
}

}  // namespace

HRESULT GetOwnTypeLibrary(ITypeLib** out) noexcept {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (ITypeLib* cached = g_library) {
    cached->AddRef();
    *out = cached;
    return S_OK;
  }
  try {
    ComPtr<ITypeLib> loaded;
    // Never registers: the library is read straight from this DLL's resource.
    HRESULT hr = LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, loaded.put());
    if (FAILED(hr)) return hr;
    *out = Publish(g_library, loaded.detach());
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT GetInterfaceTypeInfo(REFIID iid, ITypeInfo** out) noexcept {
  if (!out) return E_POINTER;
  *out = nullptr;
  std::ptrdiff_t index = FindClassByIid(iid);
  if (index < 0 || static_cast<std::size_t>(index) >= kMaxInterfaces) return TYPE_E_ELEMENTNOTFOUND;
  ITypeInfo* volatile& slot = g_type_infos[static_cast<std::size_t>(index)];
  if (ITypeInfo* cached = slot) {
    cached->AddRef();
    *out = cached;
    return S_OK;
  }
  ComPtr<ITypeLib> library;
  HRESULT hr = GetOwnTypeLibrary(library.put());
  if (FAILED(hr)) return hr;
  ComPtr<ITypeInfo> info;
  hr = library->GetTypeInfoOfGuid(iid, info.put());
  if (FAILED(hr)) return hr;
  *out = Publish(slot, info.detach());
  return S_OK;
}

void ReleaseTypeLibraryCache() noexcept {
  for (auto& slot : g_type_infos) {
    if (auto* info = static_cast<ITypeInfo*>(
            InterlockedExchangePointer(reinterpret_cast<void* volatile*>(&slot), nullptr)))
      info->Release();
  }
  if (auto* library = static_cast<ITypeLib*>(
          InterlockedExchangePointer(reinterpret_cast<void* volatile*>(&g_library), nullptr)))
    library->Release();
}

}  // namespace tavrine::com
