// clsClient: request files, result files and the cached connection values.
#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"
#include "engine/proxy.h"

#include <climits>

namespace tavrine::com {
namespace {

constexpr std::wstring_view kClassName = L"clsClient";

engine::ProxyBlock MakeProxyBlock(short proxyexistsflag, short proxytype, BSTR proxyserverip,
                                  BSTR proxyserverport, BSTR proxyserveruname, BSTR proxyserverpwd,
                                  BSTR AsciiRandom) {
  engine::ProxyBlock block;
  block.proxyexistsflag = proxyexistsflag;
  block.proxytype = proxytype;
  block.proxyserverip = ToWide(proxyserverip);
  block.proxyserverport = ToWide(proxyserverport);
  block.proxyserveruname = ToWide(proxyserveruname);
  block.proxyserverpwd = ToWide(proxyserverpwd);
  block.AsciiRandom = ToWide(AsciiRandom);
  return block;
}

// The record types the flag VARIANT_BOOL, but callers compare it with 1, the
// number "Proxyset" stores: it crosses as that number, not as -1. A stored
// number too wide for the field still reads as "enabled".
VARIANT_BOOL ProxyFlagField(std::int32_t stored) {
  if (stored < SHRT_MIN || stored > SHRT_MAX) return VARIANT_TRUE;
  return static_cast<VARIANT_BOOL>(stored);
}

engine::ProxySettings FromRecord(const Proxy_Settings& record) {
  engine::ProxySettings settings;
  settings.Proxyenabled = record.Proxyenabled;
  settings.IPText = ToWide(record.IPText);
  settings.ProxyPort = ToWide(record.ProxyPort);
  settings.httpopt_Item = FromVariantBool(record.httpopt_Item);
  settings.socksopt_Item = FromVariantBool(record.socksopt_Item);
  settings.sUsername = ToWide(record.sUsername);
  settings.sPassword = ToWide(record.sPassword);
  return settings;
}

// All strings are made first, so a failed allocation leaves the record as it was.
void ToRecord(const engine::ProxySettings& settings, Proxy_Settings& record) {
  UniqueBstr ip = MakeBstr(settings.IPText);
  UniqueBstr port = MakeBstr(settings.ProxyPort);
  UniqueBstr user = MakeBstr(settings.sUsername);
  UniqueBstr password = MakeBstr(settings.sPassword);
  record.Proxyenabled = ProxyFlagField(settings.Proxyenabled);
  record.httpopt_Item = ToVariantBool(settings.httpopt_Item);
  record.socksopt_Item = ToVariantBool(settings.socksopt_Item);
  UniqueBstr(std::exchange(record.IPText, ip.release()));
  UniqueBstr(std::exchange(record.ProxyPort, port.release()));
  UniqueBstr(std::exchange(record.sUsername, user.release()));
  UniqueBstr(std::exchange(record.sPassword, password.release()));
}

class ComClsClient final : public DispatchObject<ComClsClient, _clsClient, IID__clsClient> {
 public:
  STDMETHODIMP GetIPAddress() override {
    Run<L"GetIPAddress">([&](auto& c) { c.GetIPAddress(); });
    return S_OK;
  }
  STDMETHODIMP LoadConfigurations() override {
    Run<L"LoadConfigurations">([&](auto& c) { c.LoadConfigurations(); });
    return S_OK;
  }
  STDMETHODIMP DeleteInputOutFiles() override {
    Run<L"DeleteInputOutFiles">([&](auto& c) { c.DeleteInputOutFiles(); });
    return S_OK;
  }
  STDMETHODIMP DeleteInputOutFilesTempFd(BSTR fdPath) override {
    Run<L"DeleteInputOutFilesTempFd">([&](auto& c) { c.DeleteInputOutFilesTempFd(ToWide(fdPath)); });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputFile(short proxyexistsflag, short proxytype, BSTR proxyserverip,
                                 BSTR proxyserverport, BSTR proxyserveruname, BSTR proxyserverpwd,
                                 BSTR AsciiRandom) override {
    Run<L"WriteDLLInputFile">([&](auto& c) {
      c.WriteDLLInputFile(MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport,
                                         proxyserveruname, proxyserverpwd, AsciiRandom));
    });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputFileTempFd(BSTR strtempfd, short proxyexistsflag, short proxytype,
                                       BSTR proxyserverip, BSTR proxyserverport, BSTR proxyserveruname,
                                       BSTR proxyserverpwd, BSTR AsciiRandom) override {
    Run<L"WriteDLLInputFileTempFd">([&](auto& c) {
      c.WriteDLLInputFileTempFd(ToWide(strtempfd),
                                MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport,
                                               proxyserveruname, proxyserverpwd, AsciiRandom));
    });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputFileBackupSet(short nVal, LONG nVal1, LONG nVal2, short proxyexistsflag,
                                          short proxytype, BSTR proxyserverip, BSTR proxyserverport,
                                          BSTR proxyserveruname, BSTR proxyserverpwd, BSTR AsciiRandom) override {
    Run<L"WriteDLLInputFileBackupSet">([&](auto& c) {
      c.WriteDLLInputFileBackupSet(nVal, nVal1, nVal2,
                                   MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport,
                                                  proxyserveruname, proxyserverpwd, AsciiRandom));
    });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputFileBackupSetTempFd(BSTR strtempfd, short nVal, LONG nVal1, LONG nVal2,
                                                short proxyexistsflag, short proxytype, BSTR proxyserverip,
                                                BSTR proxyserverport, BSTR proxyserveruname,
                                                BSTR proxyserverpwd, BSTR AsciiRandom) override {
    Run<L"WriteDLLInputFileBackupSetTempFd">([&](auto& c) {
      c.WriteDLLInputFileBackupSetTempFd(
          ToWide(strtempfd), nVal, nVal1, nVal2,
          MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport, proxyserveruname,
                         proxyserverpwd, AsciiRandom));
    });
    return S_OK;
  }
  STDMETHODIMP ReadDLLOutputFile(VARIANT_BOOL* bResult, BSTR* strDescrip, double* lValue) override {
    if (!bResult || !strDescrip || !lValue) return E_POINTER;
    Run<L"ReadDLLOutputFile">([&](auto& c) {
      Ref<BoolRef> result(bResult);
      Ref<BstrRef> description(strDescrip);
      Ref<DoubleRef> value(lValue);
      c.ReadDLLOutputFile(result.value, description.value, value.value);
    });
    return S_OK;
  }
  STDMETHODIMP ReadDLLOutputFileTempFd(BSTR strtempfd, VARIANT_BOOL* bResult, BSTR* strDescrip,
                                       double* lValue) override {
    if (!bResult || !strDescrip || !lValue) return E_POINTER;
    Run<L"ReadDLLOutputFileTempFd">([&](auto& c) {
      Ref<BoolRef> result(bResult);
      Ref<BstrRef> description(strDescrip);
      Ref<DoubleRef> value(lValue);
      c.ReadDLLOutputFileTempFd(ToWide(strtempfd), result.value, description.value, value.value);
    });
    return S_OK;
  }
  STDMETHODIMP LoadProxySettings(Proxy_Settings* ProxyParam) override {
    if (!ProxyParam) return E_POINTER;
    Run<L"LoadProxySettings">([&](auto& c) {
      engine::ProxySettings settings = FromRecord(*ProxyParam);
      c.LoadProxySettings(settings);
      ToRecord(settings, *ProxyParam);
    });
    return S_OK;
  }
  STDMETHODIMP GetCurrentUser(BSTR* result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    Run<L"GetCurrentUser">([&](auto& c) { StoreResult(result, c.GetCurrentUser()); });
    return S_OK;
  }
  STDMETHODIMP GetMachineRandomNumber(BSTR* result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    Run<L"GetMachineRandomNumber">([&](auto& c) { StoreResult(result, c.GetMachineRandomNumber()); });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputVersionFile(BSTR strtempfd, short proxyexistsflag, short proxytype,
                                        BSTR proxyserverip, BSTR proxyserverport, BSTR proxyserveruname,
                                        BSTR proxyserverpwd, BSTR AsciiRandom, BSTR sFileName) override {
    Run<L"WriteDLLInputVersionFile">([&](auto& c) {
      c.WriteDLLInputVersionFile(ToWide(strtempfd),
                                 MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport,
                                                proxyserveruname, proxyserverpwd, AsciiRandom),
                                 ToWide(sFileName));
    });
    return S_OK;
  }
  STDMETHODIMP SetIPAddress(BSTR IPAddress, VARIANT* result) override {
    if (!result) return E_POINTER;
    VariantInit(result);
    Run<L"SetIPAddress">([&](auto& c) { StoreVariant(result, [&] { return c.SetIPAddress(ToWide(IPAddress)); }); });
    return S_OK;
  }
  STDMETHODIMP SetOutgoingPort(BSTR outgoingport, VARIANT* result) override {
    if (!result) return E_POINTER;
    VariantInit(result);
    Run<L"SetOutgoingPort">([&](auto& c) { StoreVariant(result, [&] { return c.SetOutgoingPort(ToWide(outgoingport)); }); });
    return S_OK;
  }
  STDMETHODIMP SetEncPassWord(BSTR encpswd, VARIANT* result) override {
    if (!result) return E_POINTER;
    VariantInit(result);
    Run<L"SetEncPassWord">([&](auto& c) { StoreVariant(result, [&] { return c.SetEncPassWord(ToWide(encpswd)); }); });
    return S_OK;
  }
  STDMETHODIMP GenerateRandomNumber(BSTR* result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    Run<L"GenerateRandomNumber">([&](auto& c) { StoreResult(result, c.GenerateRandomNumber()); });
    return S_OK;
  }
  STDMETHODIMP UpdateUserProfile(BSTR skey, BSTR sData) override {
    Run<L"UpdateUserProfile">([&](auto& c) { c.UpdateUserProfile(ToWide(skey), ToWide(sData)); });
    return S_OK;
  }
  STDMETHODIMP GetUserProfile(BSTR skey, BSTR* result) override {
    if (!result) return E_POINTER;
    *result = nullptr;
    Run<L"GetUserProfile">([&](auto& c) { StoreResult(result, c.GetUserProfile(ToWide(skey))); });
    return S_OK;
  }
  STDMETHODIMP SaveIP_PORT(VARIANT* result) override {
    if (!result) return E_POINTER;
    VariantInit(result);
    Run<L"SaveIP_PORT">([&](auto& c) { StoreVariant(result, [&] { return c.SaveIP_PORT(); }); });
    return S_OK;
  }
  STDMETHODIMP WriteDLLInputFileTempFdPC(BSTR strtempfd, short proxyexistsflag, short proxytype,
                                         BSTR proxyserverip, BSTR proxyserverport, BSTR proxyserveruname,
                                         BSTR proxyserverpwd, BSTR AsciiRandom) override {
    Run<L"WriteDLLInputFileTempFdPC">([&](auto& c) {
      c.WriteDLLInputFileTempFdPC(ToWide(strtempfd),
                                  MakeProxyBlock(proxyexistsflag, proxytype, proxyserverip, proxyserverport,
                                                 proxyserveruname, proxyserverpwd, AsciiRandom));
    });
    return S_OK;
  }

 private:
  template <MethodName kName, class Body>
  void Run(Body&& body) noexcept {
    Guarded(kClassName, kName.view(), [&] { CallPortable<kName>(impl_, body); });
  }

  clsClientImpl impl_;
};

}  // namespace

HRESULT CreateclsClient(REFIID iid, void** out) noexcept { return ComClsClient::Create(iid, out); }

}  // namespace tavrine::com
