// CBackup: backup runs and the scheduled-backup controls.
#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"

namespace tavrine::com {
namespace {

class ComCBackup final : public DispatchObject<ComCBackup, _CBackup, IID__CBackup> {
 public:
  STDMETHODIMP W_BackupInit(LONG lHandle, BSTR strTempPath, LONG* result) override {
    return LongCall<L"W_BackupInit">(result, [&](auto& c) { return c.W_BackupInit(lHandle, ToWide(strTempPath)); });
  }
  STDMETHODIMP DoBackupInit(LONG lHandle, BSTR strTempPath, LONG* result) override {
    return LongCall<L"DoBackupInit">(result, [&](auto& c) { return c.DoBackupInit(lHandle, ToWide(strTempPath)); });
  }
  STDMETHODIMP W_DoBackup(LONG* lResult, LONG* result) override {
    if (!lResult) return E_POINTER;
    return LongCall<L"W_DoBackup">(result, [&](auto& c) {
      Ref<LongRef> code(lResult);
      return c.W_DoBackup(code.value);
    });
  }
  STDMETHODIMP W_BackupExitInstance(LONG* result) override {
    return LongCall<L"W_BackupExitInstance">(result, [&](auto& c) { return c.W_BackupExitInstance(); });
  }
  STDMETHODIMP DisableScheduleBackup(BSTR sCurrentUser, LONG* result) override {
    return LongCall<L"DisableScheduleBackup">(result,
                    [&](auto& c) { return c.DisableScheduleBackup(ToWide(sCurrentUser)); });
  }
  STDMETHODIMP ResetConfigurations(BSTR sCurrentUser, LONG* result) override {
    return LongCall<L"ResetConfigurations">(result,
                    [&](auto& c) { return c.ResetConfigurations(ToWide(sCurrentUser)); });
  }
  STDMETHODIMP StopScheduleBackup(BSTR sCurrentUser, LONG* result) override {
    return LongCall<L"StopScheduleBackup">(result, [&](auto& c) { return c.StopScheduleBackup(ToWide(sCurrentUser)); });
  }
  STDMETHODIMP IsScheduleBackupRunning(BSTR sCurrentUser, VARIANT_BOOL* result) override {
    return BoolCall<L"IsScheduleBackupRunning">(result,
                    [&](auto& c) { return c.IsScheduleBackupRunning(ToWide(sCurrentUser)); });
  }
  STDMETHODIMP BackupInit(LONG* result) override {
    return LongCall<L"BackupInit">(result, [&](auto& c) { return c.BackupInit(); });
  }
  STDMETHODIMP IsBackupCancelled(VARIANT_BOOL* result) override {
    return BoolCall<L"IsBackupCancelled">(result, [&](auto& c) { return c.IsBackupCancelled(); });
  }
  STDMETHODIMP EnableScheduleBackup(BSTR sCurrentUser, LONG* result) override {
    return LongCall<L"EnableScheduleBackup">(result,
                    [&](auto& c) { return c.EnableScheduleBackup(ToWide(sCurrentUser)); });
  }

 private:
  template <MethodName kName, class Call>
  HRESULT LongCall(LONG* result, Call&& call) noexcept {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, [&](auto& c) { *result = call(c); }); });
    return S_OK;
  }
  template <MethodName kName, class Call>
  HRESULT BoolCall(VARIANT_BOOL* result, Call&& call) noexcept {
    if (!result) return E_POINTER;
    *result = kFailBool;
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, [&](auto& c) { *result = ToVariantBool(call(c)); }); });
    return S_OK;
  }

  CBackupImpl impl_;
};

}  // namespace

HRESULT CreateCBackup(REFIID iid, void** out) noexcept { return ComCBackup::Create(iid, out); }

}  // namespace tavrine::com
