// CRestore: restore and version fetch for the shell side.
#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"

namespace tavrine::com {
namespace {

class ComCRestore final : public DispatchObject<ComCRestore, _CRestore, IID__CRestore> {
 public:
  STDMETHODIMP W_Restore(BSTR destPath, BSTR parentPath, BSTR tempPath, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_Restore">([&](auto& c) { *result = c.W_Restore(ToWide(destPath), ToWide(parentPath), ToWide(tempPath)); });
    return S_OK;
  }
  STDMETHODIMP W_GetVersions(BSTR filename, LONG* result) override {
    if (!result) return E_POINTER;
    *result = kFailLong;
    Run<L"W_GetVersions">([&](auto& c) { *result = c.W_GetVersions(ToWide(filename)); });
    return S_OK;
  }

 private:
  template <MethodName kName, class Body>
  void Run(Body&& body) noexcept {
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, body); });
  }

  CRestoreImpl impl_;
};

}  // namespace

HRESULT CreateCRestore(REFIID iid, void** out) noexcept { return ComCRestore::Create(iid, out); }

}  // namespace tavrine::com
