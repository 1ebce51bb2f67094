#pragma once
// Scans over UTF-16 units that every listing line goes through: eight or
// sixteen units a step with SSE2 (there on every x64 compiler), one by one
// elsewhere.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64) || defined(_M_AMD64)
#include <emmintrin.h>
#endif

namespace tavrine::browsing {

#if defined(__SSE2__) || defined(_M_X64) || defined(_M_AMD64)
inline constexpr bool kUnitScanVectors = true;

namespace unit_scan_detail {
inline __m128i Load(const char16_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
inline __m128i Either(__m128i units, __m128i one, __m128i other) {
  return _mm_or_si128(_mm_cmpeq_epi16(units, one), _mm_cmpeq_epi16(units, other));
}
}  // namespace unit_scan_detail

// The first unit at or after `from` that is `one` or `other`, or `size`.
inline std::size_t FindEitherUnit(const char16_t* text, std::size_t from, std::size_t size, char16_t one,
                                  char16_t other) {
  using namespace unit_scan_detail;
  const __m128i a = _mm_set1_epi16(static_cast<short>(one)), b = _mm_set1_epi16(static_cast<short>(other));
  std::size_t i = from;
  for (; i + 16 <= size; i += 16) {
    const __m128i hit = _mm_or_si128(Either(Load(text + i), a, b), Either(Load(text + i + 8), a, b));
    if (_mm_movemask_epi8(hit) != 0) break;
  }
  for (; i + 8 <= size; i += 8) {
    const int mask = _mm_movemask_epi8(Either(Load(text + i), a, b));
    if (mask != 0) return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask))) / 2;
  }
  while (i < size && text[i] != one && text[i] != other) ++i;
  return i;
}

// Copies the ASCII units from the start as bytes; returns how many.
inline std::size_t CopyAsciiUnits(const char16_t* in, std::size_t size, char* out) {
  using namespace unit_scan_detail;
  const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
  std::size_t i = 0;
  for (; i + 16 <= size; i += 16) {
    const __m128i x = Load(in + i), y = Load(in + i + 8);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(x, y), high), _mm_setzero_si128())) != 0xFFFF)
      break;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(x, y));
  }
  for (; i + 8 <= size; i += 8) {
    const __m128i x = Load(in + i);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(x, high), _mm_setzero_si128())) != 0xFFFF) break;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(x, x));
  }
  // The last units as one block ending at the end, overlapping what is done.
  // Only where no block stopped the loop: the one block then covers the rest.
  if (i < size && i + 8 > size && size >= 8) {
    const __m128i x = Load(in + size - 8);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(x, high), _mm_setzero_si128())) == 0xFFFF) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out + size - 8), _mm_packus_epi16(x, x));
      return size;
    }
  }
  for (; i < size && in[i] < 0x80; ++i) out[i] = static_cast<char>(in[i]);
  return i;
}
// Widens ASCII bytes sixteen at a time while a whole block is ASCII (and,
// with kStops, holds no `stop`); returns how many. The caller goes on from
// there; `out` has room for `size` units.
template <bool kStops>
std::size_t WidenAsciiBlocks(const unsigned char* in, std::size_t size, wchar_t* out, unsigned char stop) {
  const __m128i zero = _mm_setzero_si128(), stops = _mm_set1_epi8(static_cast<char>(stop));
  const auto widen = [&](std::size_t at) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at));
    int ends = _mm_movemask_epi8(x);
    if constexpr (kStops) ends |= _mm_movemask_epi8(_mm_cmpeq_epi8(x, stops));
    if (ends != 0) return false;
    const __m128i low = _mm_unpacklo_epi8(x, zero), high = _mm_unpackhi_epi8(x, zero);
    auto* to = reinterpret_cast<__m128i*>(out + at);
    if constexpr (sizeof(wchar_t) == 2) {
      _mm_storeu_si128(to, low);
      _mm_storeu_si128(to + 1, high);
    } else {
      _mm_storeu_si128(to, _mm_unpacklo_epi16(low, zero));
      _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(low, zero));
      _mm_storeu_si128(to + 2, _mm_unpacklo_epi16(high, zero));
      _mm_storeu_si128(to + 3, _mm_unpackhi_epi16(high, zero));
    }
    return true;
  };
  std::size_t i = 0;
  while (i + 16 <= size && widen(i)) i += 16;
  // The last bytes as one block ending at the end, overlapping what is done.
  // Only where no block stopped the loop: the one block then covers the rest.
  if (i < size && i + 16 > size && size >= 16 && widen(size - 16)) return size;
  return i;
}
#else
inline constexpr bool kUnitScanVectors = false;

// Four units a step in one 64-bit word.
inline std::size_t FindEitherUnit(const char16_t* text, std::size_t from, std::size_t size, char16_t one,
                                  char16_t other) {
  constexpr std::uint64_t kLanes = 0x0001000100010001ULL, kHigh = kLanes * 0x8000;
  std::size_t i = from;
  if constexpr (std::endian::native == std::endian::little) {
    for (; i + 4 <= size; i += 4) {
      std::uint64_t word;
      std::memcpy(&word, text + i, 8);
      const std::uint64_t x = word ^ (kLanes * one), y = word ^ (kLanes * other);
      if (((x - kLanes) & ~x & kHigh) | ((y - kLanes) & ~y & kHigh)) break;
    }
  }
  while (i < size && text[i] != one && text[i] != other) ++i;
  return i;
}

inline std::size_t CopyAsciiUnits(const char16_t* in, std::size_t size, char* out) {
  std::size_t i = 0;
  if constexpr (std::endian::native == std::endian::little) {
    for (; i + 4 <= size; i += 4) {
      std::uint64_t word;
      std::memcpy(&word, in + i, 8);
      if (word & 0xFF80FF80FF80FF80ULL) break;
      for (std::size_t k = 0; k < 4; ++k) out[i + k] = static_cast<char>(word >> (16 * k));
    }
  }
  for (; i < size && in[i] < 0x80; ++i) out[i] = static_cast<char>(in[i]);
  return i;
}
template <bool kStops>
std::size_t WidenAsciiBlocks(const unsigned char*, std::size_t, wchar_t*, unsigned char) {
  return 0;
}
#endif

}  // namespace tavrine::browsing
