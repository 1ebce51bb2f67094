#include "tlbdump/tlb_dump.h"

#include <windows.h>
#include <oleauto.h>

#include <cstdio>
#include <string>

#include "com/com_ptr.h"

namespace tavrine::tlbdump {
namespace {

using com::ComPtr;
using com::ScopedFuncDesc;
using com::ScopedTypeAttr;
using com::ScopedVarDesc;
using com::UniqueBstr;
using com::UniqueVariant;

std::string Narrow(std::wstring_view text) {
  if (text.empty()) return {};
  int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                 nullptr, nullptr);
  std::string out(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size, nullptr,
                      nullptr);
  return out;
}

std::string Hex(unsigned long value, int digits) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "0x%0*lX", digits, value);
  return buffer;
}

std::string GuidText(const GUID& guid) {
  wchar_t buffer[64] = {};
  StringFromGUID2(guid, buffer, 64);
  return Narrow(buffer);
}

std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
  UniqueBstr name;
  if (FAILED(info->GetDocumentation(member, name.put(), nullptr, nullptr, nullptr))) return "?";
  return Narrow(name.view());
}

const char* BaseVtName(VARTYPE vt) {
  switch (vt) {
    case VT_EMPTY: return "VT_EMPTY";
    case VT_I2: return "VT_I2";
    case VT_I4: return "VT_I4";
    case VT_R4: return "VT_R4";
    case VT_R8: return "VT_R8";
    case VT_CY: return "VT_CY";
    case VT_DATE: return "VT_DATE";
    case VT_BSTR: return "VT_BSTR";
    case VT_DISPATCH: return "VT_DISPATCH";
    case VT_ERROR: return "VT_ERROR";
    case VT_BOOL: return "VT_BOOL";
    case VT_VARIANT: return "VT_VARIANT";
    case VT_UNKNOWN: return "VT_UNKNOWN";
    case VT_UI1: return "VT_UI1";
    case VT_I8: return "VT_I8";
    case VT_INT: return "VT_INT";
    case VT_UINT: return "VT_UINT";
    case VT_VOID: return "VT_VOID";
    case VT_HRESULT: return "VT_HRESULT";
    case VT_PTR: return "VT_PTR";
    case VT_SAFEARRAY: return "VT_SAFEARRAY";
    case VT_CARRAY: return "VT_CARRAY";
    case VT_USERDEFINED: return "VT_USERDEFINED";
    case VT_LPSTR: return "VT_LPSTR";
    case VT_LPWSTR: return "VT_LPWSTR";
    default: return nullptr;
  }
}

std::string TypeText(ITypeInfo* context, const TYPEDESC& desc) {
  switch (desc.vt) {
    case VT_PTR:
      return "VT_PTR(" + TypeText(context, *desc.lptdesc) + ")";
    case VT_SAFEARRAY:
      return "VT_SAFEARRAY(" + TypeText(context, *desc.lptdesc) + ")";
    case VT_USERDEFINED: {
      ComPtr<ITypeInfo> target;
      if (FAILED(context->GetRefTypeInfo(desc.hreftype, target.put()))) return "VT_USERDEFINED(?)";
      return "VT_USERDEFINED(" + NameOf(target.get()) + ")";
    }
    default:
      if (const char* name = BaseVtName(desc.vt)) return name;
      return "VT_" + std::to_string(desc.vt);
  }
}

// Bytes a field of this type occupies inside a record.
unsigned long SizeOf(ITypeInfo* context, const TYPEDESC& desc) {
  switch (desc.vt) {
    case VT_I2: case VT_BOOL: return 2;
    case VT_I4: case VT_R4: case VT_ERROR: case VT_INT: case VT_UINT: return 4;
    case VT_R8: case VT_CY: case VT_DATE: case VT_I8: return 8;
    case VT_UI1: return 1;
    case VT_VARIANT: return sizeof(VARIANT);
    case VT_BSTR: case VT_PTR: case VT_DISPATCH: case VT_UNKNOWN: case VT_LPSTR: case VT_LPWSTR:
    case VT_SAFEARRAY:
      return sizeof(void*);
    case VT_USERDEFINED: {
      ComPtr<ITypeInfo> target;
      if (FAILED(context->GetRefTypeInfo(desc.hreftype, target.put()))) return 0;
      ScopedTypeAttr attr(target.get());
      return attr ? attr->cbSizeInstance : 0;
    }
    default: return 0;
  }
}

std::string FlagList(unsigned value, std::initializer_list<std::pair<unsigned, const char*>> names) {
  std::string out;
  for (const auto& [bit, name] : names) {
    if (value & bit) {
      if (!out.empty()) out += '|';
      out += name;
      value &= ~bit;
    }
  }
  if (value) {
    if (!out.empty()) out += '|';
    out += Hex(value, 4);
  }
  return out.empty() ? "none" : out;
}

std::string TypeFlags(unsigned flags) {
  return FlagList(flags, {{TYPEFLAG_FAPPOBJECT, "appobject"},
                          {TYPEFLAG_FCANCREATE, "cancreate"},
                          {TYPEFLAG_FLICENSED, "licensed"},
                          {TYPEFLAG_FPREDECLID, "predeclid"},
                          {TYPEFLAG_FHIDDEN, "hidden"},
                          {TYPEFLAG_FCONTROL, "control"},
                          {TYPEFLAG_FDUAL, "dual"},
                          {TYPEFLAG_FNONEXTENSIBLE, "nonextensible"},
                          {TYPEFLAG_FOLEAUTOMATION, "oleautomation"},
                          {TYPEFLAG_FRESTRICTED, "restricted"},
                          {TYPEFLAG_FAGGREGATABLE, "aggregatable"},
                          {TYPEFLAG_FREPLACEABLE, "replaceable"},
                          {TYPEFLAG_FDISPATCHABLE, "dispatchable"}});
}

std::string ParamFlags(unsigned flags) {
  return FlagList(flags, {{PARAMFLAG_FIN, "in"},
                          {PARAMFLAG_FOUT, "out"},
                          {PARAMFLAG_FLCID, "lcid"},
                          {PARAMFLAG_FRETVAL, "retval"},
                          {PARAMFLAG_FOPT, "optional"},
                          {PARAMFLAG_FHASDEFAULT, "hasdefault"}});
}

const char* InvokeKindName(INVOKEKIND kind) {
  switch (kind) {
    case INVOKE_FUNC: return "func";
    case INVOKE_PROPERTYGET: return "propget";
    case INVOKE_PROPERTYPUT: return "propput";
    case INVOKE_PROPERTYPUTREF: return "propputref";
    default: return "?";
  }
}

const char* TypeKindName(TYPEKIND kind) {
  switch (kind) {
    case TKIND_ENUM: return "enum";
    case TKIND_RECORD: return "record";
    case TKIND_MODULE: return "module";
    case TKIND_INTERFACE: return "interface";
    case TKIND_DISPATCH: return "dispinterface";
    case TKIND_COCLASS: return "coclass";
    case TKIND_ALIAS: return "alias";
    case TKIND_UNION: return "union";
    default: return "?";
  }
}

std::string DefaultValueText(const PARAMDESC& desc) {
  if (!(desc.wParamFlags & PARAMFLAG_FHASDEFAULT) || !desc.pparamdescex) return {};
  const VARIANT& value = desc.pparamdescex->varDefaultValue;
  UniqueVariant text;
  std::string shown = "?";
  if (SUCCEEDED(VariantChangeType(text.get(), const_cast<VARIANT*>(&value), 0, VT_BSTR)))
    shown = Narrow(std::wstring_view(V_BSTR(text.get()), SysStringLen(V_BSTR(text.get()))));
  const char* vt = BaseVtName(V_VT(&value));
  return std::string(" default ") + (vt ? vt : "?") + " " + shown;
}

void DumpRecord(ITypeInfo* info, const TYPEATTR& attr, std::string& out) {
  for (UINT i = 0; i < attr.cVars; ++i) {
    ScopedVarDesc var(info, i);
    if (!var) continue;
    out += "  field " + NameOf(info, var->memid) + " " + TypeText(info, var->elemdescVar.tdesc) +
           " offset " + std::to_string(var->oInst) + " size " +
           std::to_string(SizeOf(info, var->elemdescVar.tdesc)) + "\n";
  }
}

void DumpFunctions(ITypeInfo* info, const TYPEATTR& attr, std::string& out) {
  for (UINT i = 0; i < attr.cFuncs; ++i) {
    ScopedFuncDesc func(info, i);
    if (!func) continue;
    // Names: [0] is the method, then the parameters in order.
    BSTR raw_names[64] = {};
    UINT name_count = 0;
    info->GetNames(func->memid, raw_names, 64, &name_count);
    std::string names[64];
    for (UINT n = 0; n < name_count; ++n) {
      names[n] = Narrow(std::wstring_view(raw_names[n], SysStringLen(raw_names[n])));
      SysFreeString(raw_names[n]);
    }
    out += "  method slot " + std::to_string(func->oVft / static_cast<int>(sizeof(void*))) + " " +
           names[0] + " dispid " + Hex(static_cast<unsigned long>(func->memid), 8) + " " +
           InvokeKindName(func->invkind) + " returns " + TypeText(info, func->elemdescFunc.tdesc) +
           " params " + std::to_string(func->cParams) + " optional " + std::to_string(func->cParamsOpt);
    if (func->wFuncFlags) out += " funcflags " + Hex(func->wFuncFlags, 4);
    out += "\n";
    for (SHORT p = 0; p < func->cParams; ++p) {
      const ELEMDESC& param = func->lprgelemdescParam[p];
      const std::string& name = (p + 1 < static_cast<SHORT>(name_count)) ? names[p + 1] : "?";
      out += "    param " + name + " " + TypeText(info, param.tdesc) + " " +
             ParamFlags(param.paramdesc.wParamFlags) + DefaultValueText(param.paramdesc) + "\n";
    }
  }
}

void DumpType(ITypeLib* library, UINT index, std::string& out) {
  ComPtr<ITypeInfo> info;
  if (FAILED(library->GetTypeInfo(index, info.put()))) {
    out += "type " + std::to_string(index) + " unreadable\n";
    return;
  }
  ScopedTypeAttr attr(info.get());
  if (!attr) return;
  out += std::string(TypeKindName(attr->typekind)) + " " + NameOf(info.get()) + " " + GuidText(attr->guid) +
         " version " + std::to_string(attr->wMajorVerNum) + "." + std::to_string(attr->wMinorVerNum) +
         " flags " + TypeFlags(attr->wTypeFlags);
  switch (attr->typekind) {
    case TKIND_RECORD:
      out += " size " + std::to_string(attr->cbSizeInstance) + " align " + std::to_string(attr->cbAlignment) +
             " fields " + std::to_string(attr->cVars) + "\n";
      DumpRecord(info.get(), *attr.get(), out);
      break;
    case TKIND_DISPATCH: {
      out += " dispatch-members " + std::to_string(attr->cFuncs) + "\n";
      // A dual interface: list the methods from its vtable half.
      HREFTYPE vtable_ref = 0;
      ComPtr<ITypeInfo> vtable;
      if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &vtable_ref)) &&
          SUCCEEDED(info->GetRefTypeInfo(vtable_ref, vtable.put()))) {
        ScopedTypeAttr vattr(vtable.get());
        if (vattr) {
          ComPtr<ITypeInfo> base;
          HREFTYPE base_ref = 0;
          std::string base_name = "none";
          if (vattr->cImplTypes > 0 && SUCCEEDED(vtable->GetRefTypeOfImplType(0, &base_ref)) &&
              SUCCEEDED(vtable->GetRefTypeInfo(base_ref, base.put())))
            base_name = NameOf(base.get());
          out += "  vtable " + NameOf(vtable.get()) + " base " + base_name + " flags " +
                 TypeFlags(vattr->wTypeFlags) + " slots " +
                 std::to_string(vattr->cbSizeVft / static_cast<int>(sizeof(void*))) + " methods " +
                 std::to_string(vattr->cFuncs) + "\n";
          DumpFunctions(vtable.get(), *vattr.get(), out);
        }
      }
      break;
    }
    case TKIND_INTERFACE:
      out += " slots " + std::to_string(attr->cbSizeVft / static_cast<int>(sizeof(void*))) + " methods " +
             std::to_string(attr->cFuncs) + "\n";
      DumpFunctions(info.get(), *attr.get(), out);
      break;
    case TKIND_COCLASS:
      out += "\n";
      for (UINT i = 0; i < attr->cImplTypes; ++i) {
        HREFTYPE ref = 0;
        ComPtr<ITypeInfo> impl;
        INT impl_flags = 0;
        if (FAILED(info->GetRefTypeOfImplType(i, &ref)) || FAILED(info->GetRefTypeInfo(ref, impl.put())))
          continue;
        info->GetImplTypeFlags(i, &impl_flags);
        out += "  implements " + NameOf(impl.get()) + " " +
               FlagList(static_cast<unsigned>(impl_flags), {{IMPLTYPEFLAG_FDEFAULT, "default"},
                                                            {IMPLTYPEFLAG_FSOURCE, "source"},
                                                            {IMPLTYPEFLAG_FRESTRICTED, "restricted"}}) +
               "\n";
      }
      break;
    case TKIND_ALIAS:
      out += " of " + TypeText(info.get(), attr->tdescAlias) + "\n";
      break;
    default:
      out += "\n";
      break;
  }
}

}  // namespace

std::string DumpTypeLibrary(ITypeLib* library) {
  std::string out;
  TLIBATTR* lib_attr = nullptr;
  if (FAILED(library->GetLibAttr(&lib_attr))) return "library unreadable\n";
  UniqueBstr name;
  library->GetDocumentation(-1, name.put(), nullptr, nullptr, nullptr);
  const char* syskind = lib_attr->syskind == SYS_WIN64 ? "win64" : lib_attr->syskind == SYS_WIN32 ? "win32" : "?";
  out += "library " + Narrow(name.view()) + " " + GuidText(lib_attr->guid) + " version " +
         std::to_string(lib_attr->wMajorVerNum) + "." + std::to_string(lib_attr->wMinorVerNum) + " lcid " +
         Hex(lib_attr->lcid, 4) + " syskind " + syskind + " types " +
         std::to_string(library->GetTypeInfoCount()) + "\n";
  library->ReleaseTLibAttr(lib_attr);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) DumpType(library, i, out);
  return out;
}

std::string DumpTypeLibraryFile(const std::wstring& path) {
  ComPtr<ITypeLib> library;
  HRESULT hr = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.put());
  if (FAILED(hr)) return "LoadTypeLibEx failed " + Hex(static_cast<unsigned long>(hr), 8) + "\n";
  return DumpTypeLibrary(library.get());
}

}  // namespace tavrine::tlbdump
