#pragma once
// What every COM method wrapper does around the portable call: argument
// conversion, in/out parameters written back, results stored, every exception
// turned into the trace line, and the not-yet-available portable classes.
#include <windows.h>
#include <oleauto.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "com/com_ptr.h"
#include "foundation/trace_log.h"

namespace tavrine::com {

// Results a wrapper leaves when the call fails or cannot be made.
inline constexpr LONG kFailLong = -1;
inline constexpr short kFailShort = 0;
inline constexpr VARIANT_BOOL kFailBool = VARIANT_FALSE;

inline std::wstring ToWide(BSTR value) {
  return value ? std::wstring(value, SysStringLen(value)) : std::wstring();
}
inline VARIANT_BOOL ToVariantBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }
inline bool FromVariantBool(VARIANT_BOOL value) { return value != VARIANT_FALSE; }

// Runs `body`; an exception becomes "[EXCEPTION] <method>() : ..." and goes no further.
template <class Body>
void Guarded(std::wstring_view method, Body&& body) noexcept {
  try {
    body();
  } catch (...) {
    foundation::TraceException(method, foundation::DescribeCurrentException());
  }
}
// The same with the class named in the line ("<class> :: <method>()").
template <class Body>
void Guarded(std::wstring_view class_name, std::wstring_view method, Body&& body) noexcept {
  try {
    body();
  } catch (...) {
    foundation::TraceException(class_name, method, foundation::DescribeCurrentException());
  }
}

// A method's name as a template argument, so that whether its portable
// implementation exists is decided at compile time.
template <std::size_t N>
struct MethodName {
  wchar_t text[N] = {};
  constexpr MethodName(const wchar_t (&name)[N]) {  // NOLINT: implicit by design
    for (std::size_t i = 0; i < N; ++i) text[i] = name[i];
  }
  constexpr std::wstring_view view() const { return std::wstring_view(text, N - 1); }
};

// Stands in for a portable class that is not part of the build yet.
struct NotAvailable {};

// In/out parameters: the portable value is read on entry and written back on
// scope exit, also when the call throws, so values set before an error are
// kept. A BSTR is replaced only when its text changed. A null target (an
// omitted optional argument) reads as the default value and is not written.
struct BstrRef {
  using Com = BSTR;
  using Value = std::wstring;
  static Value Load(BSTR value) { return ToWide(value); }
  static void Store(BSTR* target, const Value& value) noexcept {
    if (SameText(*target, value)) return;
    if (BSTR copy = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()))) {
      SysFreeString(*target);
      *target = copy;
    }
  }
  static bool SameText(BSTR current, const Value& value) noexcept {
    std::wstring_view now = current ? std::wstring_view(current, SysStringLen(current)) : std::wstring_view();
    return now == value;
  }
};
struct LongRef {
  using Com = LONG;
  using Value = std::int32_t;
  static Value Load(LONG value) { return static_cast<Value>(value); }
  static void Store(LONG* target, Value value) noexcept { *target = static_cast<LONG>(value); }
};
struct ShortRef {
  using Com = short;
  using Value = std::int16_t;
  static Value Load(short value) { return value; }
  static void Store(short* target, Value value) noexcept { *target = value; }
};
struct DoubleRef {
  using Com = double;
  using Value = double;
  static Value Load(double value) { return value; }
  static void Store(double* target, Value value) noexcept { *target = value; }
};
struct BoolRef {
  using Com = VARIANT_BOOL;
  using Value = bool;
  static Value Load(VARIANT_BOOL value) { return FromVariantBool(value); }
  static void Store(VARIANT_BOOL* target, Value value) noexcept { *target = ToVariantBool(value); }
};

template <class Traits>
class Ref {
 public:
  explicit Ref(typename Traits::Com* target)
      : value(target ? Traits::Load(*target) : typename Traits::Value{}), target_(target) {}
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  ~Ref() {
    if (target_) Traits::Store(target_, value);
  }

  typename Traits::Value value;

 private:
  typename Traits::Com* target_;
};

// [out, retval] BSTR: a new string (the caller frees it).
inline void StoreResult(BSTR* out, std::wstring_view value) { *out = MakeBstr(value).release(); }

// [out, retval] VARIANT from whatever the portable call returns (nothing: VT_EMPTY).
inline void AssignVariant(VARIANT* out, bool value) {
  V_VT(out) = VT_BOOL;
  V_BOOL(out) = ToVariantBool(value);
}
inline void AssignVariant(VARIANT* out, std::int16_t value) {
  V_VT(out) = VT_I2;
  V_I2(out) = value;
}
inline void AssignVariant(VARIANT* out, std::int32_t value) {
  V_VT(out) = VT_I4;
  V_I4(out) = static_cast<LONG>(value);
}
inline void AssignVariant(VARIANT* out, double value) {
  V_VT(out) = VT_R8;
  V_R8(out) = value;
}
inline void AssignVariant(VARIANT* out, std::wstring_view value) {
  BSTR text = MakeBstr(value).release();
  V_VT(out) = VT_BSTR;
  V_BSTR(out) = text;
}
template <class Call>
void StoreVariant(VARIANT* out, Call&& call) {
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
  } else {
    AssignVariant(out, call());
  }
}

}  // namespace tavrine::com
