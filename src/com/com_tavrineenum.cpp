// TavrinEenum: walks the remote listing and a file's versions for the shell side.
#include <utility>

#include "TavrinEUI.h"
#include "com/com_classes.h"
#include "com/dispatch_object.h"
#include "com/portable_classes.h"

namespace tavrine::com {
namespace {

// The portable class names its record types FindData and FileVersions, with
// the records' field names; the file size is a plain 64-bit count (the
// record's CURRENCY carries it unscaled).
template <class Time>
void LoadTime(const TavrinE_FILETIME& in, Time& out) {
  out.dwLowDateTime = static_cast<decltype(out.dwLowDateTime)>(in.dwLowDateTime);
  out.dwHighDateTime = static_cast<decltype(out.dwHighDateTime)>(in.dwHighDateTime);
}
template <class Time>
void StoreTime(const Time& in, TavrinE_FILETIME& out) {
  out.dwLowDateTime = static_cast<LONG>(in.dwLowDateTime);
  out.dwHighDateTime = static_cast<LONG>(in.dwHighDateTime);
}
template <class Record, class Portable>
void LoadVersionFields(const Record& in, Portable& out) {
  out.nFileSize = static_cast<decltype(out.nFileSize)>(in.nFileSize.int64);
  out.nVersion = static_cast<decltype(out.nVersion)>(in.nVersion);
  LoadTime(in.ftCreationTime, out.ftCreationTime);
  LoadTime(in.ftLastWriteTime, out.ftLastWriteTime);
}
template <class Portable, class Record>
void StoreVersionFields(const Portable& in, Record& out) {
  out.nFileSize.int64 = static_cast<LONGLONG>(in.nFileSize);
  out.nVersion = static_cast<short>(in.nVersion);
  StoreTime(in.ftCreationTime, out.ftCreationTime);
  StoreTime(in.ftLastWriteTime, out.ftLastWriteTime);
}
template <class Portable>
void LoadFindData(const TavrinE_WIN32_FIND_DATA& in, Portable& out) {
  LoadVersionFields(in, out);
  out.cFilename = ToWide(in.cFilename);
  out.strUnimode = ToWide(in.strUnimode);
}
// Strings first, so a failed allocation leaves the record untouched.
template <class Portable>
void StoreFindData(const Portable& in, TavrinE_WIN32_FIND_DATA& out) {
  UniqueBstr name = MakeBstr(in.cFilename);
  UniqueBstr mode = MakeBstr(in.strUnimode);
  StoreVersionFields(in, out);
  UniqueBstr(std::exchange(out.cFilename, name.release()));
  UniqueBstr(std::exchange(out.strUnimode, mode.release()));
}

// A result variant that holds a long starts as the failure value, so a call
// that fails before the portable one answers still reports -1.
inline void StoreFailLong(VARIANT* result) {
  VariantInit(result);
  V_VT(result) = VT_I4;
  V_I4(result) = kFailLong;
}

template <class Impl>
using FindDataOf = typename Impl::FindData;
template <class Impl>
using FileVersionsOf = typename Impl::FileVersions;

class ComTavrinEenum final : public DispatchObject<ComTavrinEenum, _TavrinEenum, IID__TavrinEenum> {
 public:
  STDMETHODIMP TavrinEInit(short* result) override {
    if (!result) return E_POINTER;
    *result = kFailShort;
    Run<L"TavrinEInit">([&](auto& c) { *result = c.TavrinEInit(); });
    return S_OK;
  }
  STDMETHODIMP W_GetCurrentUser(BSTR* strUserName, VARIANT* result) override {
    if (!strUserName || !result) return E_POINTER;
    VariantInit(result);
    Run<L"W_GetCurrentUser">([&](auto& c) {
      Ref<BstrRef> user_name(strUserName);
      StoreVariant(result, [&] { return c.W_GetCurrentUser(user_name.value); });
    });
    return S_OK;
  }
  STDMETHODIMP TavrinEFindFirstFile(BSTR strFileName, TavrinE_WIN32_FIND_DATA* wd, VARIANT* result) override {
    if (!wd || !result) return E_POINTER;
    StoreFailLong(result);
    Run<L"TavrinEFindFirstFile">([&](auto& c) {
      FindDataOf<std::remove_reference_t<decltype(c)>> data;
      LoadFindData(*wd, data);
      StoreVariant(result, [&] { return c.TavrinEFindFirstFile(ToWide(strFileName), data); });
      StoreFindData(data, *wd);
    });
    return S_OK;
  }
  STDMETHODIMP TavrinENextFile(TavrinE_WIN32_FIND_DATA* wd, LONG* result) override {
    if (!wd || !result) return E_POINTER;
    *result = kFailLong;
    Run<L"TavrinENextFile">([&](auto& c) {
      FindDataOf<std::remove_reference_t<decltype(c)>> data;
      LoadFindData(*wd, data);
      *result = c.TavrinENextFile(data);
      StoreFindData(data, *wd);
    });
    return S_OK;
  }
  STDMETHODIMP TavrinEExitInstance() override {
    Run<L"TavrinEExitInstance">([&](auto& c) { c.TavrinEExitInstance(); });
    return S_OK;
  }
  STDMETHODIMP TavrinELocalRefresh(short* result) override {
    if (!result) return E_POINTER;
    *result = kFailShort;
    Run<L"TavrinELocalRefresh">([&](auto& c) { *result = c.TavrinELocalRefresh(); });
    return S_OK;
  }
  STDMETHODIMP GetFirstVersion(BSTR filename, TavrinE_FILEVERSIONS* sfirstVer, LONG* result) override {
    if (!sfirstVer || !result) return E_POINTER;
    *result = kFailLong;
    Run<L"GetFirstVersion">([&](auto& c) {
      FileVersionsOf<std::remove_reference_t<decltype(c)>> version;
      LoadVersionFields(*sfirstVer, version);
      *result = c.GetFirstVersion(ToWide(filename), version);
      StoreVersionFields(version, *sfirstVer);
    });
    return S_OK;
  }
  STDMETHODIMP GetNextVersion(TavrinE_FILEVERSIONS* sfirstVer, LONG* result) override {
    return VersionCall<L"GetNextVersion">(sfirstVer, result,
                       [](auto& c, auto& version) { return c.GetNextVersion(version); });
  }
  STDMETHODIMP GetFileVersion(TavrinE_FILEVERSIONS* filever, LONG* result) override {
    return VersionCall<L"GetFileVersion">(filever, result,
                       [](auto& c, auto& version) { return c.GetFileVersion(version); });
  }
  STDMETHODIMP GetMultiplePCInfo(VARIANT* result) override {
    if (!result) return E_POINTER;
    StoreFailLong(result);
    Run<L"GetMultiplePCInfo">([&](auto& c) { StoreVariant(result, [&] { return c.GetMultiplePCInfo(); }); });
    return S_OK;
  }
  STDMETHODIMP ReadMachineList(VARIANT* result) override {
    if (!result) return E_POINTER;
    StoreFailLong(result);
    Run<L"ReadMachineList">([&](auto& c) { StoreVariant(result, [&] { return c.ReadMachineList(); }); });
    return S_OK;
  }
  STDMETHODIMP IsItemExists(BSTR strval, VARIANT_BOOL* result) override {
    if (!result) return E_POINTER;
    *result = kFailBool;
    Run<L"IsItemExists">([&](auto& c) { *result = ToVariantBool(c.IsItemExists(ToWide(strval))); });
    return S_OK;
  }

 private:
  template <MethodName kName, class Body>
  void Run(Body&& body) noexcept {
    Guarded(kName.view(), [&] { CallPortable<kName>(impl_, body); });
  }
  template <MethodName kName, class Call>
  HRESULT VersionCall(TavrinE_FILEVERSIONS* record, LONG* result, Call&& call) {
    if (!record || !result) return E_POINTER;
    *result = kFailLong;
    Run<kName>([&](auto& c) {
      FileVersionsOf<std::remove_reference_t<decltype(c)>> version;
      LoadVersionFields(*record, version);
      *result = call(c, version);
      StoreVersionFields(version, *record);
    });
    return S_OK;
  }

  TavrinEenumImpl impl_;
};

}  // namespace

HRESULT CreateTavrinEenum(REFIID iid, void** out) noexcept { return ComTavrinEenum::Create(iid, out); }

}  // namespace tavrine::com
