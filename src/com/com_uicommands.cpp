// UICommands: the shell side's entry for login, quota, messages and deletes.
#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"

namespace tavrine::com {
namespace {

class ComUICommands final : public DispatchObject<ComUICommands, _UICommands, IID__UICommands> {
 public:
  STDMETHODIMP UI_Login_Command(LONG* hHandle, short* result) override {
    if (!hHandle || !result) return E_POINTER;
    *result = kFailShort;
    Run<L"UI_Login_Command">([&](auto& c) {
      Ref<LongRef> handle(hHandle);
      *result = c.UI_Login_Command(handle.value);
    });
    return S_OK;
  }
  STDMETHODIMP W_GetQuota_Command(double* sMaxSize, double* sUsedSpace, VARIANT* result) override {
    if (!sMaxSize || !sUsedSpace || !result) return E_POINTER;
    VariantInit(result);
    Run<L"W_GetQuota_Command">([&](auto& c) {
      Ref<DoubleRef> max_size(sMaxSize);
      Ref<DoubleRef> used_space(sUsedSpace);
      StoreVariant(result, [&] { return c.W_GetQuota_Command(max_size.value, used_space.value); });
    });
    return S_OK;
  }
  STDMETHODIMP W_GetCurrentUserName(BSTR* sUsername, LONG* result) override {
    if (!sUsername || !result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_GetCurrentUserName">([&](auto& c) {
      Ref<BstrRef> user_name(sUsername);
      *result = c.W_GetCurrentUserName(user_name.value);
    });
    return S_OK;
  }
  STDMETHODIMP W_AutoReconnect(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_AutoReconnect">([&](auto& c) { *result = c.W_AutoReconnect(); });
    return S_OK;
  }
  STDMETHODIMP UI_Session_Command(LONG* hHandle, VARIANT* result) override {
    if (!hHandle || !result) return E_POINTER;
    VariantInit(result);
    Run<L"UI_Session_Command">([&](auto& c) {
      Ref<LongRef> handle(hHandle);
      // The command gives its caller no value: the VARIANT stays empty.
      c.UI_Session_Command(handle.value);
    });
    return S_OK;
  }
  STDMETHODIMP W_DeleteRemoteFiles(BSTR sInputDelete, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_DeleteRemoteFiles">([&](auto& c) { *result = c.W_DeleteRemoteFiles(ToWide(sInputDelete)); });
    return S_OK;
  }
  STDMETHODIMP W_Dummycall(LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_Dummycall">([&](auto& c) { *result = c.W_Dummycall(); });
    return S_OK;
  }
  // The message methods answer 0 ("no such code") when they fail.
  STDMETHODIMP W_GetMessageString(LONG MessageCode, BSTR* MessageRet, LONG* result) override {
    if (!MessageRet || !result) return E_POINTER;
    *result = 0;
    Run<L"W_GetMessageString">([&](auto& c) {
      Ref<BstrRef> text(MessageRet);
      *result = c.W_GetMessageString(MessageCode, text.value);
    });
    return S_OK;
  }
  // msgType is optional: a vtable caller may pass null.
  STDMETHODIMP W_GetMessageInfo(LONG MessageCode, BSTR* msgTitle, short* msgType, LONG* result) override {
    if (!msgTitle || !result) return E_POINTER;
    *result = 0;
    Run<L"W_GetMessageInfo">([&](auto& c) {
      Ref<BstrRef> title(msgTitle);
      Ref<ShortRef> type(msgType);
      *result = c.W_GetMessageInfo(MessageCode, title.value, type.value);
    });
    return S_OK;
  }

 private:
  template <MethodName kName, class Body>
  void Run(Body&& body) noexcept {
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, body); });
  }

  UICommandsImpl impl_;
};

}  // namespace

HRESULT CreateUICommands(REFIID iid, void** out) noexcept { return ComUICommands::Create(iid, out); }

}  // namespace tavrine::com
