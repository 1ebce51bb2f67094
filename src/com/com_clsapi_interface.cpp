// clsAPI_Interface: the engine round trips (login, listing, quota, restore, delete).
#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"

namespace tavrine::com {
namespace {

class ComClsApiInterface final
    : public DispatchObject<ComClsApiInterface, _clsAPI_Interface, IID__clsAPI_Interface> {
 public:
  STDMETHODIMP API_GetQuota(double* sMaxSize, double* sUsedSpace, short* result) override {
    if (!sMaxSize || !sUsedSpace || !result) return E_POINTER;
    *result = kFailShort;
    Run<L"API_GetQuota">([&](auto& c) {
      Ref<DoubleRef> max_size(sMaxSize);
      Ref<DoubleRef> used_space(sUsedSpace);
      *result = c.API_GetQuota(max_size.value, used_space.value);
    });
    return S_OK;
  }
  STDMETHODIMP API_ENTRY_RESTORE(BSTR destPath, BSTR parentPath, BSTR tempPath, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_ENTRY_RESTORE">([&](auto& c) { *result = c.API_ENTRY_RESTORE(ToWide(destPath), ToWide(parentPath), ToWide(tempPath)); });
    return S_OK;
  }
  STDMETHODIMP API_GETVERSIONS(BSTR filepath, BSTR* pstrtemp, LONG* result) override {
    if (!pstrtemp || !result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_GETVERSIONS">([&](auto& c) {
      Ref<BstrRef> temp(pstrtemp);
      *result = c.API_GETVERSIONS(ToWide(filepath), temp.value);
    });
    return S_OK;
  }
  STDMETHODIMP API_AutoReconnect(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_AutoReconnect">([&](auto& c) { *result = c.API_AutoReconnect(); });
    return S_OK;
  }
  STDMETHODIMP API_UPDATE_RAND_NUM(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_UPDATE_RAND_NUM">([&](auto& c) { *result = c.API_UPDATE_RAND_NUM(); });
    return S_OK;
  }
  STDMETHODIMP API_DELETE_REMOTE_FILE(BSTR sInputDelete, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_DELETE_REMOTE_FILE">([&](auto& c) { *result = c.API_DELETE_REMOTE_FILE(ToWide(sInputDelete)); });
    return S_OK;
  }
  STDMETHODIMP API_FirewallSettings(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_FirewallSettings">([&](auto& c) { *result = c.API_FirewallSettings(); });
    return S_OK;
  }
  STDMETHODIMP API_REMOTE(BSTR strtempfd, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_REMOTE">([&](auto& c) { *result = c.API_REMOTE(ToWide(strtempfd)); });
    return S_OK;
  }
  // lResult becomes a 16-bit integer when the portable call sets a completion
  // value; otherwise the caller's variant is left as it was.
  STDMETHODIMP API_ENTRY(BSTR strtempfd, VARIANT* lResult, LONG* result) override {
    if (!lResult || !result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_ENTRY">([&](auto& c) {
      std::int16_t completion = 0;
      struct WriteBack {
        VARIANT* target;
        std::int16_t& value;
        ~WriteBack() {
          if (value == 0) return;
          if (SUCCEEDED(VariantClear(target))) {
            V_VT(target) = VT_I2;
            V_I2(target) = value;
          }
        }
      } write_back{lResult, completion};
      *result = c.API_ENTRY(ToWide(strtempfd), completion);
    });
    return S_OK;
  }
  STDMETHODIMP API_AutoMultipleServerSupport(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"API_AutoMultipleServerSupport">([&](auto& c) { *result = c.API_AutoMultipleServerSupport(); });
    return S_OK;
  }

 private:
  template <MethodName kName, class Body>
  void Run(Body&& body) noexcept {
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, body); });
  }

  clsAPI_InterfaceImpl impl_;
};

}  // namespace

HRESULT CreateclsAPI_Interface(REFIID iid, void** out) noexcept { return ComClsApiInterface::Create(iid, out); }

}  // namespace tavrine::com
