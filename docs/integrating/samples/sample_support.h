// Small helpers shared by the samples: an apartment, owning wrappers for COM
// pointers, BSTRs and handles, object creation by ProgID, and the one way every
// sample reports a result code (the library's own message table).
//
// Everything here is plain Windows SDK; the only TavrinEUI file needed is the
// header generated from the type library (TavrinEUI.h) and its identifiers
// (TavrinEUI_i.c).
#pragma once
#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "TavrinEUI.h"

namespace sample {

// A COM call that failed outright: the HRESULT, not a result code. TavrinEUI
// itself never fails a call this way; a failed HRESULT means the class is not
// registered, or the caller and the library disagree about the interface.
class CallFailed : public std::runtime_error {
 public:
  CallFailed(const char* call, HRESULT hr) : std::runtime_error(Describe(call, hr)) {}

 private:
  static std::string Describe(const char* call, HRESULT hr) {
    char text[160];
    std::snprintf(text, sizeof text, "%s failed: HRESULT 0x%08lX", call, static_cast<unsigned long>(hr));
    return text;
  }
};

inline void Check(HRESULT hr, const char* call) {
  if (FAILED(hr)) throw CallFailed(call, hr);
}

// One single-threaded apartment for the life of main: the classes are
// apartment-threaded, and each thread that uses them has its own state.
class Apartment {
 public:
  Apartment() { Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "CoInitializeEx"); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

template <class T>
class Ptr {
 public:
  Ptr() = default;
  ~Ptr() { Reset(); }
  Ptr(Ptr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
  Ptr& operator=(Ptr&& other) noexcept {
    if (this != &other) {
      Reset();
      p_ = std::exchange(other.p_, nullptr);
    }
    return *this;
  }
  Ptr(const Ptr&) = delete;
  Ptr& operator=(const Ptr&) = delete;
  T* operator->() const { return p_; }
  T* get() const { return p_; }
  void** put() {
    Reset();
    return reinterpret_cast<void**>(&p_);
  }
  void Reset() {
    if (p_) p_->Release();
    p_ = nullptr;
  }

 private:
  T* p_ = nullptr;
};

// Creates a class by its ProgID ("TavrinEUI.<class>"), asking for its default interface.
template <class T>
Ptr<T> Create(const wchar_t* prog_id, REFIID iid) {
  CLSID clsid{};
  Check(CLSIDFromProgID(prog_id, &clsid), "CLSIDFromProgID (is TavrinEUI.dll registered?)");
  Ptr<T> object;
  Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.put()), "CoCreateInstance");
  return object;
}

// An owned BSTR. In-parameters take get(); by-reference [in, out] BSTR*
// parameters take InOut(), which the library may free and replace.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(const std::wstring& text) : s_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
    if (!s_) throw std::bad_alloc();
  }
  ~Bstr() { SysFreeString(s_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  BSTR get() const { return s_; }
  BSTR* InOut() { return &s_; }
  // For [out, retval] BSTR*: the old string is freed first.
  BSTR* Out() {
    SysFreeString(s_);
    s_ = nullptr;
    return &s_;
  }
  std::wstring str() const { return s_ ? std::wstring(s_, SysStringLen(s_)) : std::wstring(); }

 private:
  BSTR s_ = nullptr;
};

class Variant {
 public:
  Variant() { VariantInit(&v_); }
  ~Variant() { VariantClear(&v_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  VARIANT* get() { return &v_; }
  // The value as a long; -1 when it holds nothing a long can be made of.
  LONG AsLong() {
    VARIANT converted;
    VariantInit(&converted);
    LONG value = -1;
    if (SUCCEEDED(VariantChangeType(&converted, &v_, 0, VT_I4))) value = V_I4(&converted);
    VariantClear(&converted);
    return value;
  }

 private:
  VARIANT v_;
};

// A process handle the library handed over (restore, upload): the caller's to close.
class Handle {
 public:
  explicit Handle(HANDLE h) : h_(h) {}
  ~Handle() {
    if (h_ && h_ != INVALID_HANDLE_VALUE) CloseHandle(h_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HANDLE get() const { return h_; }

 private:
  HANDLE h_;
};

// Output as UTF-8, one line at a time.
inline void Say(const std::wstring& line) {
  const std::wstring text = line + L"\n";
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(), size, nullptr, nullptr);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  std::fflush(stdout);
}

// What the user would be shown for a result code: the message table's text,
// and the title the library proposes for its box (empty when it proposes none).
inline std::wstring Explain(_UICommands* commands, LONG code) {
  Bstr text(L"");
  LONG has_text = 0;
  Check(commands->W_GetMessageString(code, text.InOut(), &has_text), "W_GetMessageString");
  Bstr title(L"");
  short type = 0;
  LONG has_title = 0;
  Check(commands->W_GetMessageInfo(code, title.InOut(), &type, &has_title), "W_GetMessageInfo");
  std::wstring shown = has_text ? text.str() : L"(no text for this code)";
  if (has_title) shown = L"[" + title.str() + L"] " + shown;
  return shown + L" (" + std::to_wstring(code) + L")";
}

// A list file as the shell side writes it: UTF-16LE with a byte-order mark, CR LF.
inline bool WriteUtf16Lines(const std::wstring& file, const std::vector<std::wstring>& lines) {
  HANDLE h = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return false;
  Handle closer(h);
  std::wstring text = L"\xFEFF";
  for (const std::wstring& line : lines) text += line + L"\r\n";
  DWORD written = 0;
  const DWORD size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
  return WriteFile(h, text.data(), size, &written, nullptr) && written == size;
}

// Every sample's main: an apartment, the body, and one line for a failed call.
// Exit codes: 0 done, 1 the service answered with a failure code, 2 a call failed.
template <class Body>
int Run(Body body) {
  try {
    Apartment apartment;
    return body();
  } catch (const std::exception& error) {
    Say(L"FAILED: " + std::wstring(error.what(), error.what() + std::char_traits<char>::length(error.what())));
    return 2;
  }
}

}  // namespace sample
