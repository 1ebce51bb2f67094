// The late-bound way, as a VB6 or scripting host calls: through IDispatch,
// with the DISPIDs of the type library, and typed by-reference arguments.
//
//   late_bound.exe
//
// Calls: UICommands through IDispatch: GetIDsOfNames for each name (it must
//        give the documented DISPID), Invoke W_GetQuota_Command (two
//        VT_R8 | VT_BYREF arguments), Invoke W_GetMessageString (a VT_BSTR
//        | VT_BYREF argument).
#include "sample_support.h"

namespace {

// DISPIDs are part of the contract: 0x60030000 plus the member number.
constexpr DISPID kGetQuotaCommand = 0x60030001;
constexpr DISPID kGetMessageString = 0x60030007;

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  DISPID id = DISPID_UNKNOWN;
  sample::Check(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

// Arguments go in reverse order: the last parameter is rgvarg[0].
void Call(IDispatch* object, DISPID id, VARIANT* reversed_args, UINT count, VARIANT* result, const char* what) {
  DISPPARAMS params{reversed_args, nullptr, count, 0};
  EXCEPINFO error{};
  UINT bad_argument = 0;
  sample::Check(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, result, &error,
                               &bad_argument),
                what);
}

}  // namespace

int wmain() {
  return sample::Run([] {
    auto object = sample::Create<IDispatch>(L"TavrinEUI.UICommands", IID_IDispatch);
    bool documented = true;
    for (const auto& [name, id] : {std::pair{L"W_GetQuota_Command", kGetQuotaCommand},
                                   std::pair{L"W_GetMessageString", kGetMessageString}}) {
      const DISPID found = IdOf(object.get(), name);
      if (found != id) {
        wchar_t text[160];
        std::swprintf(text, 160, L"late_bound: %ls has DISPID 0x%08lX in the library, 0x%08lX in the guide", name,
                      static_cast<unsigned long>(found), static_cast<unsigned long>(id));
        sample::Say(text);
        documented = false;
      }
    }
    if (!documented) return 2;

    // W_GetQuota_Command(sMaxSize As Double, sUsedSpace As Double) As Variant, both ByRef.
    double max_size = -2, used = -2;
    VARIANT args[2];
    VariantInit(&args[0]);
    VariantInit(&args[1]);
    V_VT(&args[1]) = VT_R8 | VT_BYREF;  // sMaxSize
    V_R8REF(&args[1]) = &max_size;
    V_VT(&args[0]) = VT_R8 | VT_BYREF;  // sUsedSpace
    V_R8REF(&args[0]) = &used;
    sample::Variant quota_result;
    Call(object.get(), kGetQuotaCommand, args, 2, quota_result.get(), "Invoke W_GetQuota_Command");

    // W_GetMessageString(MessageCode As Long, MessageRet As String) As Long.
    sample::Bstr text(L"");
    VARIANT message_args[2];
    VariantInit(&message_args[0]);
    VariantInit(&message_args[1]);
    V_VT(&message_args[1]) = VT_I4;
    V_I4(&message_args[1]) = -424;
    V_VT(&message_args[0]) = VT_BSTR | VT_BYREF;
    V_BSTRREF(&message_args[0]) = text.InOut();
    sample::Variant found;
    Call(object.get(), kGetMessageString, message_args, 2, found.get(), "Invoke W_GetMessageString");

    sample::Say(L"late_bound: W_GetQuota_Command -> " + std::to_wstring(quota_result.AsLong()) + L", used " +
                std::to_wstring(static_cast<long long>(used)) + L" of " +
                std::to_wstring(static_cast<long long>(max_size)) + L" bytes");
    sample::Say(L"late_bound: W_GetMessageString(-424) -> " + std::to_wstring(found.AsLong()) + L" \"" + text.str() +
                L"\"");
    return quota_result.AsLong() == 0 && used >= 0 && found.AsLong() == 1 ? 0 : 1;
  });
}
