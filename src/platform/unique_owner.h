#pragma once
#include <utility>

namespace tavrine::platform {

// Owns one resource of a kind described by Traits:
//   using Value = ...;                    what the OS hands out (a handle, a pointer, an fd)
//   static Value Empty() noexcept;        the kind's own "none" (null, -1, INVALID_HANDLE_VALUE)
//   static void Close(Value) noexcept;    gives a non-empty value back
// Moving hands the resource over; assigning over an owner closes what it held.
template <class Traits>
class UniqueOwner {
 public:
  using Value = typename Traits::Value;

  UniqueOwner() noexcept = default;
  explicit UniqueOwner(Value adopt) noexcept : value_(adopt) {}
  UniqueOwner(UniqueOwner&& other) noexcept : value_(other.release()) {}
  UniqueOwner& operator=(UniqueOwner&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  UniqueOwner(const UniqueOwner&) = delete;
  UniqueOwner& operator=(const UniqueOwner&) = delete;
  ~UniqueOwner() { reset(); }

  Value get() const noexcept { return value_; }
  explicit operator bool() const noexcept { return value_ != Traits::Empty(); }

  // Closes what is held and gives `replacement` the old one's place.
  void reset(Value replacement = Traits::Empty()) noexcept {
    Value old = std::exchange(value_, replacement);
    if (old != Traits::Empty()) Traits::Close(old);
  }
  // Hands the resource to the caller, who closes it from now on.
  Value release() noexcept { return std::exchange(value_, Traits::Empty()); }
  // For an out-parameter: closes what is held first.
  Value* put() noexcept {
    reset();
    return &value_;
  }
  // For an [in, out] parameter: the callee may replace the value in place.
  Value* addressof() noexcept { return &value_; }

 private:
  Value value_ = Traits::Empty();
};

// Traits of a kind whose empty value is the type's zero (a null handle or
// pointer) and that `close` gives back; its result, if any, is not needed.
template <class T, auto close>
struct ZeroEmpty {
  using Value = T;
  static constexpr Value Empty() noexcept { return Value{}; }
  static void Close(Value value) noexcept { static_cast<void>(close(value)); }
};

}  // namespace tavrine::platform
