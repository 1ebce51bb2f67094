// A COM client of TavrinEUI.dll under Wine: registration, creation, the
// late-bound surface as VB6 and scripts use it, and the module count.
#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>
#include <string>
#include <vector>

#include "TavrinEUI.h"
#include "com/com_ptr.h"
#include "support/install_folder.h"
#include "support/temp_folder.h"
#include "tlbdump/tlb_dump.h"

namespace {

using tavrine::com::ComPtr;
using tavrine::com::MakeBstr;
using tavrine::com::UniqueBstr;
using tavrine::com::UniqueHkey;
using tavrine::com::UniqueVariant;

using ExportFunction = HRESULT(STDAPICALLTYPE*)();
using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

struct ClassRow {
  const wchar_t* prog_id;
  const CLSID* clsid;
  const IID* iid;
};
const ClassRow kClassRows[] = {
    {L"TavrinEUI.UICommands", &CLSID_UICommands, &IID__UICommands},
    {L"TavrinEUI.TavrinEenum", &CLSID_TavrinEenum, &IID__TavrinEenum},
    {L"TavrinEUI.clsAPI_Interface", &CLSID_clsAPI_Interface, &IID__clsAPI_Interface},
    {L"TavrinEUI.clsClient", &CLSID_clsClient, &IID__clsClient},
    {L"TavrinEUI.CRestore", &CLSID_CRestore, &IID__CRestore},
    {L"TavrinEUI.CBackup", &CLSID_CBackup, &IID__CBackup},
};

std::wstring GuidText(const GUID& guid) {
  wchar_t buffer[40] = {};
  StringFromGUID2(guid, buffer, 40);
  return buffer;
}

// The default value of HKCR\<subkey> (or the named value); kMissing when absent.
const std::wstring kMissing = L"<missing>";
std::wstring ReadClassesValue(const std::wstring& subkey, const wchar_t* name = nullptr) {
  wchar_t buffer[1024] = {};
  DWORD size = sizeof(buffer);
  if (RegGetValueW(HKEY_CLASSES_ROOT, subkey.c_str(), name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS)
    return kMissing;
  return buffer;
}
bool ClassesKeyExists(const std::wstring& subkey) {
  UniqueHkey key;
  return RegOpenKeyExW(HKEY_CLASSES_ROOT, subkey.c_str(), 0, KEY_QUERY_VALUE, key.put()) == ERROR_SUCCESS;
}

// An export of a loaded DLL; through void*, as FARPROC's own signature is meaningless.
template <class Function>
Function Export(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The DLL loaded once for the whole program, registered for the tests and
// unregistered at the end.
struct Server {
  static Server& Get() {
    static Server server;
    return server;
  }
  std::wstring path = (tavrine::testing::TestProgramFolder() / L"TavrinEUI.dll").wstring();
  HMODULE module = LoadLibraryW(path.c_str());
  ExportFunction can_unload_now = Export<ExportFunction>(module, "DllCanUnloadNow");
  ExportFunction register_server = Export<ExportFunction>(module, "DllRegisterServer");
  ExportFunction unregister_server = Export<ExportFunction>(module, "DllUnregisterServer");
  GetClassObjectFunction get_class_object = Export<GetClassObjectFunction>(module, "DllGetClassObject");
};

class ComEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    Server& server = Server::Get();
    ASSERT_NE(server.module, nullptr) << "cannot load TavrinEUI.dll";
    ASSERT_EQ(server.register_server(), S_OK);
  }
  void TearDown() override {
    EXPECT_EQ(Server::Get().unregister_server(), S_OK);
    CoUninitialize();
  }
};
const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new ComEnvironment);

// Every test ends with no object, factory or lock alive: a reference leak
// anywhere shows here.
class ComTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(Server::Get().can_unload_now(), S_OK) << "a COM reference leaked"; }

  static ComPtr<IDispatch> Create(const wchar_t* prog_id) {
    CLSID clsid{};
    ComPtr<IDispatch> object;
    EXPECT_EQ(CLSIDFromProgID(prog_id, &clsid), S_OK) << prog_id;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()), S_OK);
    return object;
  }
  static DISPID IdOf(IDispatch* object, const wchar_t* name) {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), S_OK) << name;
    return id;
  }
  // Invoke by name; `args` in call order (reversed for DISPPARAMS here).
  static HRESULT CallByName(IDispatch* object, const wchar_t* name, std::vector<VARIANT> args, VARIANT* result) {
    std::vector<VARIANT> reversed(args.rbegin(), args.rend());
    DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    UINT arg_error = 0;
    return object->Invoke(IdOf(object, name), IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, result,
                          nullptr, &arg_error);
  }
  static VARIANT I4(LONG value) {
    VARIANT v{};
    V_VT(&v) = VT_I4;
    V_I4(&v) = value;
    return v;
  }
  // By reference: `target` is the caller's variable of `type`, as VB6 passes it.
  static VARIANT Ref(VARTYPE type, void* target) {
    VARIANT v{};
    V_VT(&v) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&v) = target;
    return v;
  }
};

TEST_F(ComTest, registration_writes_class_progid_interface_and_typelib_keys) {
  const std::wstring dll = Server::Get().path;
  for (const ClassRow& row : kClassRows) {
    SCOPED_TRACE(row.prog_id);
    const std::wstring clsid = L"CLSID\\" + GuidText(*row.clsid);
    EXPECT_EQ(_wcsicmp(ReadClassesValue(clsid + L"\\InprocServer32").c_str(), dll.c_str()), 0);
    EXPECT_EQ(ReadClassesValue(clsid + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    EXPECT_EQ(ReadClassesValue(clsid + L"\\ProgID"), row.prog_id);
    EXPECT_EQ(ReadClassesValue(std::wstring(row.prog_id) + L"\\CLSID"), GuidText(*row.clsid));
    const std::wstring iface = L"Interface\\" + GuidText(*row.iid);
    EXPECT_EQ(ReadClassesValue(iface + L"\\ProxyStubClsid32"), L"{00020424-0000-0000-C000-000000000046}");
    EXPECT_EQ(ReadClassesValue(iface + L"\\TypeLib"), GuidText(LIBID_TavrinEUI));
  }
  EXPECT_TRUE(ClassesKeyExists(L"TypeLib\\" + GuidText(LIBID_TavrinEUI) + L"\\1.0\\409\\win64"));
}

TEST_F(ComTest, unregister_removes_every_key_and_is_repeatable) {
  ASSERT_EQ(Server::Get().unregister_server(), S_OK);
  for (const ClassRow& row : kClassRows) {
    SCOPED_TRACE(row.prog_id);
    EXPECT_FALSE(ClassesKeyExists(L"CLSID\\" + GuidText(*row.clsid)));
    EXPECT_FALSE(ClassesKeyExists(row.prog_id));
    EXPECT_FALSE(ClassesKeyExists(L"Interface\\" + GuidText(*row.iid)));
  }
  EXPECT_FALSE(ClassesKeyExists(L"TypeLib\\" + GuidText(LIBID_TavrinEUI)));
  EXPECT_EQ(Server::Get().unregister_server(), S_OK) << "unregistering twice";
  ASSERT_EQ(Server::Get().register_server(), S_OK);
  ASSERT_EQ(Server::Get().register_server(), S_OK) << "registering over an existing registration";
  EXPECT_TRUE(ClassesKeyExists(L"CLSID\\" + GuidText(CLSID_clsClient) + L"\\InprocServer32"));
}

// The ProgID's CLSID: registration_writes_class_progid_interface_and_typelib_keys.
TEST_F(ComTest, every_class_is_created_and_answers_its_interfaces) {
  for (const ClassRow& row : kClassRows) {
    SCOPED_TRACE(row.prog_id);
    ComPtr<IUnknown> object;
    ASSERT_EQ(CoCreateInstance(*row.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.put_void()), S_OK);
    ComPtr<IDispatch> dispatch;
    ComPtr<IUnknown> default_interface, identity, other;
    EXPECT_EQ(object.As(IID_IDispatch, dispatch), S_OK);
    EXPECT_EQ(object.As(*row.iid, default_interface), S_OK);
    EXPECT_EQ(default_interface.As(IID_IUnknown, identity), S_OK);
    EXPECT_EQ(identity.get(), object.get()) << "IUnknown identity";
    EXPECT_EQ(object.As(IID_IClassFactory, other), E_NOINTERFACE);
    EXPECT_EQ(other.get(), nullptr);

    UINT count = 0;
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(dispatch->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ASSERT_EQ(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.put()), S_OK);
    TYPEATTR* attr = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attr), S_OK);
    EXPECT_TRUE(IsEqualIID(attr->guid, *row.iid));
    info->ReleaseTypeAttr(attr);
  }
}

// The module stays loaded while an object or a server lock lives; a lock is the
// module's, so another class's factory may release it.
TEST_F(ComTest, class_factory_refuses_aggregation_and_unknown_classes_and_locks_the_module) {
  ExportFunction can_unload = Server::Get().can_unload_now;
  ComPtr<IDispatch> object = Create(L"TavrinEUI.TavrinEenum");
  EXPECT_EQ(can_unload(), S_FALSE);
  object.reset();
  EXPECT_EQ(can_unload(), S_OK);

  ComPtr<IClassFactory> factory;
  ASSERT_EQ(CoGetClassObject(CLSID_CBackup, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.put_void()),
            S_OK);
  ComPtr<IUnknown> inner;
  EXPECT_EQ(factory->CreateInstance(reinterpret_cast<IUnknown*>(factory.get()), IID_IUnknown, inner.put_void()),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(inner.get(), nullptr);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory.reset();
  EXPECT_EQ(can_unload(), S_FALSE) << "a server lock outlives its factory";
  ASSERT_EQ(CoGetClassObject(CLSID_CRestore, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.put_void()),
            S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.reset();
  EXPECT_EQ(can_unload(), S_OK);

  ComPtr<IUnknown> none;
  EXPECT_EQ(Server::Get().get_class_object(IID_IDispatch, IID_IClassFactory, none.put_void()),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(none.get(), nullptr);
}

// Every published dispid, gaps included, is pinned by the golden listing of the
// library the lookup reads; here only what the lookup adds.
TEST_F(ComTest, names_resolve_in_any_case_and_only_on_their_own_interface) {
  ComPtr<IDispatch> object = Create(L"TavrinEUI.UICommands");
  EXPECT_EQ(IdOf(object.get(), L"w_getmessageinfo"), 0x60030008);
  DISPID id = 0;
  LPOLESTR unknown[] = {const_cast<LPOLESTR>(L"GetFileVersion")};  // a member of another interface
  EXPECT_EQ(object->GetIDsOfNames(IID_NULL, unknown, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
}

TEST_F(ComTest, typed_by_reference_arguments_are_read_and_written_as_vb6_passes_them) {
  ComPtr<IDispatch> commands = Create(L"TavrinEUI.UICommands");
  // A known code: the text comes back through the BSTR reference.
  UniqueBstr text = MakeBstr(L"poison");
  UniqueVariant result;
  ASSERT_EQ(CallByName(commands.get(), L"W_GetMessageString", {I4(-424), Ref(VT_BSTR, text.addressof())}, result.get()),
            S_OK);
  ASSERT_EQ(V_VT(result.get()), VT_I4);
  EXPECT_EQ(V_I4(result.get()), 1);
  EXPECT_FALSE(text.view().empty());
  EXPECT_NE(text.view(), L"poison");

  // An unknown code leaves the caller's string alone: the same BSTR, not a copy.
  UniqueBstr kept = MakeBstr(L"unchanged");
  BSTR before = kept.get();
  ASSERT_EQ(CallByName(commands.get(), L"W_GetMessageString", {I4(-402), Ref(VT_BSTR, kept.addressof())},
                       result.put()),
            S_OK);
  EXPECT_EQ(V_I4(result.get()), 0);
  EXPECT_EQ(kept.get(), before);
  EXPECT_EQ(kept.view(), L"unchanged");

  // A long by reference written back: without W_BackupInit there is no
  // exchange folder, so the upload is not started (-1) and nothing completed (0).
  ComPtr<IDispatch> backup = Create(L"TavrinEUI.CBackup");
  LONG code = 77;
  ASSERT_EQ(CallByName(backup.get(), L"W_DoBackup", {Ref(VT_I4, &code)}, result.put()), S_OK);
  EXPECT_EQ(V_I4(result.get()), -1);
  EXPECT_EQ(code, 0);

  // A by-reference variant for a typed parameter is what a script passes: refused.
  UniqueVariant script_variable;
  EXPECT_EQ(CallByName(commands.get(), L"W_GetMessageString", {I4(-424), Ref(VT_VARIANT, script_variable.get())},
                       result.put()),
            DISP_E_TYPEMISMATCH);
}

TEST_F(ComTest, message_info_takes_two_arguments_or_three) {
  ComPtr<IDispatch> commands = Create(L"TavrinEUI.UICommands");
  UniqueBstr title = MakeBstr(L"poison");
  UniqueVariant result;
  ASSERT_EQ(CallByName(commands.get(), L"W_GetMessageInfo", {I4(-504), Ref(VT_BSTR, title.addressof())},
                       result.get()),
            S_OK);
  EXPECT_EQ(V_I4(result.get()), 0);
  EXPECT_TRUE(title.view().empty()) << "the title is cleared first";

  short type = 99;
  ASSERT_EQ(CallByName(commands.get(), L"W_GetMessageInfo",
                       {I4(-412), Ref(VT_BSTR, title.addressof()), Ref(VT_I2, &type)},
                       result.put()),
            S_OK);
  EXPECT_EQ(V_I4(result.get()), 1);
  EXPECT_EQ(type, 1);

  // Early bound, the optional pointer may be left out.
  ComPtr<_UICommands> early;
  ASSERT_EQ(commands.As(IID__UICommands, early), S_OK);
  LONG found = -7;
  EXPECT_EQ(early->W_GetMessageInfo(-415, title.addressof(), nullptr, &found), S_OK);
  EXPECT_EQ(found, 1);
}

TEST_F(ComTest, exit_instance_has_no_result) {
  ComPtr<IDispatch> enumerator = Create(L"TavrinEUI.TavrinEenum");
  UniqueVariant result;
  EXPECT_EQ(CallByName(enumerator.get(), L"TavrinEExitInstance", {}, result.get()), S_OK);
  EXPECT_EQ(V_VT(result.get()), VT_EMPTY);
}

TEST_F(ComTest, early_bound_calls_check_pointers_and_fill_results) {
  ComPtr<_clsClient> client;
  ASSERT_EQ(CoCreateInstance(CLSID_clsClient, nullptr, CLSCTX_INPROC_SERVER, IID__clsClient, client.put_void()),
            S_OK);
  EXPECT_EQ(client->GetCurrentUser(nullptr), E_POINTER);
  EXPECT_EQ(client->ReadDLLOutputFile(nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(client->LoadProxySettings(nullptr), E_POINTER);

  BSTR random = reinterpret_cast<BSTR>(0x1);  // poisoned [out]: must be overwritten, not freed
  ASSERT_EQ(client->GetMachineRandomNumber(&random), S_OK);
  UniqueBstr owned(random);
  EXPECT_NE(random, reinterpret_cast<BSTR>(0x1));

  // A record by reference: every BSTR field comes back valid.
  Proxy_Settings settings{};
  settings.IPText = MakeBstr(L"old-host").release();
  ASSERT_EQ(client->LoadProxySettings(&settings), S_OK);
  for (BSTR field : {settings.IPText, settings.ProxyPort, settings.sUsername, settings.sPassword}) {
    EXPECT_NE(field, nullptr);
    SysFreeString(field);
  }

  ComPtr<_TavrinEenum> enumerator;
  ASSERT_EQ(CoCreateInstance(CLSID_TavrinEenum, nullptr, CLSCTX_INPROC_SERVER, IID__TavrinEenum,
                             enumerator.put_void()),
            S_OK);
  TavrinE_WIN32_FIND_DATA data{};
  data.nVersion = 5;
  LONG next = 0;
  EXPECT_EQ(enumerator->TavrinENextFile(nullptr, &next), E_POINTER);
  EXPECT_EQ(enumerator->TavrinENextFile(&data, &next), S_OK);
  EXPECT_EQ(next, -1) << "no listing was loaded on this thread";
}

// A copy of the library in an install folder of its own, so that it reads a
// configuration and a profile without touching the build folder's.
class InstalledCopy {
 public:
  static constexpr const wchar_t* kRootKey = L"Software\\Brennick\\TavrinEComProxy";

  InstalledCopy() {
    std::filesystem::copy_file(Server::Get().path, folder_.path() / L"TavrinEUI.dll");
    tavrine::testing::WriteFileBytes(
        folder_.path() / "Configuration.ini",
        tavrine::testing::StandardConfiguration("", "English", "TavrinEComProxy"));
    RegDeleteTreeW(HKEY_CURRENT_USER, kRootKey);
    module_ = LoadLibraryW((folder_.path() / L"TavrinEUI.dll").c_str());
  }
  ~InstalledCopy() {
    if (module_) FreeLibrary(module_);
    RegDeleteTreeW(HKEY_CURRENT_USER, kRootKey);
  }
  // Makes `user` the current user with these plain profile values.
  void SetProfile(const std::wstring& user, const std::vector<std::pair<std::wstring, std::wstring>>& values) {
    SetValue(kRootKey, L"CurrentUser", user);
    for (const auto& [name, value] : values) SetValue(std::wstring(kRootKey) + L"\\" + user, name, value);
  }
  ComPtr<_clsClient> CreateClient() const {
    ComPtr<_clsClient> client;
    auto get_class_object = Export<GetClassObjectFunction>(module_, "DllGetClassObject");
    ComPtr<IClassFactory> factory;
    if (!get_class_object || FAILED(get_class_object(CLSID_clsClient, IID_IClassFactory, factory.put_void())))
      return client;
    factory->CreateInstance(nullptr, IID__clsClient, client.put_void());
    return client;
  }

 private:
  static void SetValue(const std::wstring& key, const std::wstring& name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name.c_str(), REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  }
  tavrine::testing::TempFolder folder_;
  HMODULE module_ = nullptr;
};

// Callers compare Proxyenabled with 1, the number the profile stores; the two
// choices stay VARIANT_BOOLs.
TEST(ComProxy, load_proxy_settings_hands_back_the_stored_proxy_flag) {
  const struct {
    const wchar_t* proxyset;
    VARIANT_BOOL expected;
  } kRows[] = {{L"1", 1}, {L"0", 0}, {L"", 0}, {L"2", 2}, {L"-1", -1}, {L"70000", VARIANT_TRUE}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.proxyset);
    InstalledCopy copy;
    copy.SetProfile(L"proxyuser", {{L"Proxyset", row.proxyset},
                                   {L"proxytypehttp", L"1"},
                                   {L"proxytypesocks", L"0"},
                                   {L"ProxyName", L"proxy.example"}});
    ComPtr<_clsClient> client = copy.CreateClient();
    ASSERT_TRUE(client.get());
    ASSERT_EQ(client->LoadConfigurations(), S_OK);
    Proxy_Settings settings{};
    settings.Proxyenabled = 77;  // poisoned: must be overwritten
    ASSERT_EQ(client->LoadProxySettings(&settings), S_OK);
    EXPECT_EQ(settings.Proxyenabled, row.expected);
    EXPECT_EQ(settings.httpopt_Item, VARIANT_TRUE);
    EXPECT_EQ(settings.socksopt_Item, VARIANT_FALSE);
    EXPECT_EQ(UniqueBstr(settings.IPText).view(), L"proxy.example");
    for (BSTR field : {settings.ProxyPort, settings.sUsername, settings.sPassword}) SysFreeString(field);
  }
}

TEST_F(ComTest, embedded_type_library_matches_the_golden_listing) {
  // Compared whole: on a difference gtest prints the lines that differ.
  EXPECT_EQ(tavrine::tlbdump::DumpTypeLibraryFile(Server::Get().path),
            tavrine::testing::ReadFileBytes(TAVRINE_COM_GOLDEN));
}

// Two apartment threads at once, each creating and releasing every class many
// times and asking each enumeration for its user: no object, lock, handle or
// window resource may outlive them (the fixture then checks DllCanUnloadNow).
TEST_F(ComTest, two_apartment_threads_create_and_release_many_objects) {
  auto handle_count = [] {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
  };
  const DWORD handles_before = handle_count();
  const DWORD gdi_before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  const DWORD user_before = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  std::atomic<int> failures{0};
  auto apartment = [&failures] {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
      ++failures;
      return;
    }
    for (int round = 0; round < 25; ++round) {
      for (const ClassRow& row : kClassRows) {
        ComPtr<IDispatch> object;
        if (CoCreateInstance(*row.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()) != S_OK)
          ++failures;
      }
      ComPtr<_TavrinEenum> enumeration;
      if (CoCreateInstance(CLSID_TavrinEenum, nullptr, CLSCTX_INPROC_SERVER, IID__TavrinEenum,
                           enumeration.put_void()) != S_OK) {
        ++failures;
        continue;
      }
      BSTR user = nullptr;
      VARIANT result;
      VariantInit(&result);
      if (FAILED(enumeration->W_GetCurrentUser(&user, &result))) ++failures;
      VariantClear(&result);
      SysFreeString(user);
    }
    CoUninitialize();
  };
  std::thread first(apartment), second(apartment);
  first.join();
  second.join();
  EXPECT_EQ(failures.load(), 0);
  // Thread start-up may cache a handle or two; a leak per object would be hundreds.
  EXPECT_LE(handle_count(), handles_before + 8);
  EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdi_before);
  EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), user_before);
}

}  // namespace
