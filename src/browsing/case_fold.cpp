#include "browsing/case_fold.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "browsing/unit_scan.h"

namespace tavrine::browsing {

namespace {

// Upper-case letters first, first + step, ... last, lower-cased to lower,
// lower + step, ... Simple one-letter mappings as Windows lower-cases file
// names, limited to pairs of the same UTF-8 length: U+023A and U+023E (whose
// lower cases take three bytes) and U+1E9E (capital sharp s) are left as they are.
struct CaseRun {
  char32_t first, last, lower, step;
};

constexpr CaseRun kCaseRuns[] = {
    // Latin-1 and Latin Extended-A
    {0xC0, 0xD6, 0xE0, 1}, {0xD8, 0xDE, 0xF8, 1}, {0x100, 0x12E, 0x101, 2}, {0x132, 0x136, 0x133, 2},
    {0x139, 0x147, 0x13A, 2}, {0x14A, 0x176, 0x14B, 2}, {0x178, 0x178, 0xFF, 1}, {0x179, 0x17D, 0x17A, 2},
    // Latin Extended-B
    {0x181, 0x181, 0x253, 1}, {0x182, 0x184, 0x183, 2}, {0x186, 0x186, 0x254, 1}, {0x187, 0x187, 0x188, 1},
    {0x189, 0x18A, 0x256, 1}, {0x18B, 0x18B, 0x18C, 1}, {0x18E, 0x18E, 0x1DD, 1}, {0x18F, 0x18F, 0x259, 1},
    {0x190, 0x190, 0x25B, 1}, {0x191, 0x191, 0x192, 1}, {0x193, 0x193, 0x260, 1}, {0x194, 0x194, 0x263, 1},
    {0x196, 0x196, 0x269, 1}, {0x197, 0x197, 0x268, 1}, {0x198, 0x198, 0x199, 1}, {0x19C, 0x19C, 0x26F, 1},
    {0x19D, 0x19D, 0x272, 1}, {0x19F, 0x19F, 0x275, 1}, {0x1A0, 0x1A4, 0x1A1, 2}, {0x1A6, 0x1A6, 0x280, 1},
    {0x1A7, 0x1A7, 0x1A8, 1}, {0x1A9, 0x1A9, 0x283, 1}, {0x1AC, 0x1AC, 0x1AD, 1}, {0x1AE, 0x1AE, 0x288, 1},
    {0x1AF, 0x1AF, 0x1B0, 1}, {0x1B1, 0x1B2, 0x28A, 1}, {0x1B3, 0x1B5, 0x1B4, 2}, {0x1B7, 0x1B7, 0x292, 1},
    {0x1B8, 0x1B8, 0x1B9, 1}, {0x1BC, 0x1BC, 0x1BD, 1}, {0x1C4, 0x1C4, 0x1C6, 1}, {0x1C5, 0x1C5, 0x1C6, 1},
    {0x1C7, 0x1C7, 0x1C9, 1}, {0x1C8, 0x1C8, 0x1C9, 1}, {0x1CA, 0x1CA, 0x1CC, 1}, {0x1CB, 0x1DB, 0x1CC, 2},
    {0x1DE, 0x1EE, 0x1DF, 2}, {0x1F1, 0x1F1, 0x1F3, 1}, {0x1F2, 0x1F4, 0x1F3, 2}, {0x1F6, 0x1F6, 0x195, 1},
    {0x1F7, 0x1F7, 0x1BF, 1}, {0x1F8, 0x21E, 0x1F9, 2}, {0x220, 0x220, 0x19E, 1}, {0x222, 0x232, 0x223, 2},
    {0x23B, 0x23B, 0x23C, 1}, {0x23D, 0x23D, 0x19A, 1}, {0x241, 0x241, 0x242, 1}, {0x243, 0x243, 0x180, 1},
    {0x244, 0x244, 0x289, 1}, {0x245, 0x245, 0x28C, 1}, {0x246, 0x24E, 0x247, 2},
    // Greek and Cyrillic
    {0x391, 0x3A1, 0x3B1, 1}, {0x3A3, 0x3A9, 0x3C3, 1}, {0x400, 0x40F, 0x450, 1}, {0x410, 0x42F, 0x430, 1},
    // Latin Extended Additional (Vietnamese among others)
    {0x1E00, 0x1E94, 0x1E01, 2}, {0x1EA0, 0x1EFE, 0x1EA1, 2},
};

// The runs as two lookup tables over the blocks they touch: U+0000..U+04FF
// and U+1E00..U+1EFF.
constexpr char32_t kLowBlocksEnd = 0x500;
constexpr char32_t kAdditionalFirst = 0x1E00;
constexpr char32_t kAdditionalEnd = 0x1F00;
constexpr std::size_t kSlots = kLowBlocksEnd + (kAdditionalEnd - kAdditionalFirst);

constexpr bool HasSlot(char32_t c) {
  return c < kLowBlocksEnd || (c >= kAdditionalFirst && c < kAdditionalEnd);
}
constexpr std::size_t Slot(char32_t c) {
  return c < kLowBlocksEnd ? c : c - kAdditionalFirst + kLowBlocksEnd;
}
constexpr std::size_t Utf8Length(char32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }

struct CaseTables {
  std::array<char16_t, kSlots> lower{};
  std::array<char16_t, kSlots> upper{};
  bool valid = true;
};

constexpr CaseTables BuildCaseTables() {
  CaseTables t;
  std::array<char16_t, kSlots> letter{};
  for (std::size_t s = 0; s < kSlots; ++s) {
    letter[s] = static_cast<char16_t>(s < kLowBlocksEnd ? s : s - kLowBlocksEnd + kAdditionalFirst);
  }
  t.lower = t.upper = letter;
  for (const CaseRun& run : kCaseRuns) {
    for (char32_t c = run.first; c <= run.last; c += run.step) {
      const char32_t lower = run.lower + (c - run.first);
      // Folding must keep byte offsets, and both letters need a slot.
      if (!HasSlot(c) || !HasSlot(lower) || Utf8Length(c) != Utf8Length(lower)) t.valid = false;
      t.lower[Slot(c)] = static_cast<char16_t>(lower);
    }
  }
  // Upper-casing maps a letter to the first capital of its lower case, so two
  // names are equal upper-cased exactly when they are equal lower-cased.
  std::array<char16_t, kSlots> capital{};
  for (std::size_t s = 0; s < kSlots; ++s) {
    const char32_t lower = t.lower[s];
    if (lower != letter[s] && capital[Slot(lower)] == 0) capital[Slot(lower)] = static_cast<char16_t>(letter[s]);
  }
  for (std::size_t s = 0; s < kSlots; ++s) {
    const char16_t first_capital = capital[Slot(t.lower[s])];
    if (first_capital != 0) t.upper[s] = first_capital;
  }
  for (std::size_t s = 0; s < kSlots; ++s) {
    if (t.lower[Slot(t.upper[s])] != t.lower[s] || t.upper[Slot(t.lower[s])] != t.upper[s]) t.valid = false;
  }
  return t;
}

constexpr CaseTables kCaseTables = BuildCaseTables();
static_assert(kCaseTables.valid, "a case pair changes the UTF-8 length or the two directions disagree");

}  // namespace

char32_t FoldCaseBeyondAscii(char32_t c) { return HasSlot(c) ? kCaseTables.lower[Slot(c)] : c; }

char32_t FoldCase(char32_t c) { return FoldCaseInline(c); }

char32_t UpperCase(char32_t c) {
  if (c < 0x80) return (c >= U'a' && c <= U'z') ? c - 32 : c;
  return HasSlot(c) ? kCaseTables.upper[Slot(c)] : c;
}

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    if (c > 0x10FFFF) c = 0xFFFD;
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

char32_t DecodeUtf8(std::string_view bytes, std::size_t& i) {
  unsigned char lead = static_cast<unsigned char>(bytes[i]);
  if (lead < 0x80) {
    ++i;
    return lead;
  }
  std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
  if (length == 0 || i + length > bytes.size()) {
    ++i;
    return 0xFFFD;
  }
  char32_t c = lead & (0x7F >> length);
  for (std::size_t k = 1; k < length; ++k) {
    unsigned char next = static_cast<unsigned char>(bytes[i + k]);
    if ((next & 0xC0) != 0x80) {
      ++i;
      return 0xFFFD;
    }
    c = (c << 6) | (next & 0x3F);
  }
  i += length;
  return c;
}

void AppendWide(std::wstring& out, char32_t c) {
  if constexpr (sizeof(wchar_t) == 2) {
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
      return;
    }
  }
  out.push_back(static_cast<wchar_t>(c));
}

namespace {

// Listing text is mostly ASCII. These copy the leading run of code units below
// 0x80 from `in` to `out`, testing eight units with one or two word masks, and
// return its length.
// kStops: the run also ends at the ASCII byte `stop`.
template <bool kStops>
std::size_t CopyAsciiRun(const unsigned char* in, std::size_t size, wchar_t* out, unsigned char stop) {
  constexpr std::uint64_t kOnes = 0x0101010101010101ULL, kHigh = kOnes * 0x80;
  std::size_t i = WidenAsciiBlocks<kStops>(in, size, out, stop);
  for (; i + 8 <= size; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, in + i, 8);
    std::uint64_t ends = word;
    if constexpr (kStops) {
      const std::uint64_t x = word ^ (kOnes * stop);
      ends |= (x - kOnes) & ~x;  // high bit set somewhere when a byte equals stop
    }
    if (ends & kHigh) break;
    for (std::size_t k = 0; k < 8; ++k) out[i + k] = static_cast<wchar_t>(in[i + k]);
  }
  for (; i < size && in[i] < 0x80 && !(kStops && in[i] == stop); ++i) out[i] = static_cast<wchar_t>(in[i]);
  return i;
}

// The decoding of AssignWide; with kStops it ends at the first `stop` byte
// and returns its offset (or the size).
template <bool kStops>
std::size_t Widen(std::wstring& out, std::size_t kept, std::string_view bytes, unsigned char stop) {
  // No byte sequence decodes to more units than it has bytes, so one resize
  // (within the capacity the caller's string already has) is enough.
  out.resize(kept + bytes.size());
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  wchar_t* dst = out.data();
  std::size_t i = 0, n = kept;
  while (i < bytes.size()) {
    const std::size_t run = CopyAsciiRun<kStops>(in + i, bytes.size() - i, dst + n, stop);
    i += run;
    n += run;
    if (kStops && i < bytes.size() && in[i] == stop) break;
    // Two-byte forms (Latin, Greek, Cyrillic names) are the usual others and
    // come as words: decoded here in one go.
    while (i + 1 < bytes.size() && (in[i] & 0xE0) == 0xC0 && (in[i + 1] & 0xC0) == 0x80) {
      dst[n++] = static_cast<wchar_t>(((in[i] & 0x1F) << 6) | (in[i + 1] & 0x3F));
      i += 2;
    }
    if (i == bytes.size() || in[i] < 0x80) continue;
    char32_t c = DecodeUtf8(bytes, i);
    if (sizeof(wchar_t) == 2 && c >= 0x10000) {
      c -= 0x10000;
      dst[n++] = static_cast<wchar_t>(0xD800 + (c >> 10));
      dst[n++] = static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
    } else {
      dst[n++] = static_cast<wchar_t>(c);
    }
  }
  out.resize(n);
  return i;
}

}  // namespace

void AssignWide(std::wstring& out, std::string_view bytes) { Widen<false>(out, 0, bytes, 0); }

void AppendWide(std::wstring& out, std::string_view bytes) { Widen<false>(out, out.size(), bytes, 0); }

std::size_t AssignWideUntil(std::wstring& out, std::string_view bytes, char stop) {
  return Widen<true>(out, 0, bytes, static_cast<unsigned char>(stop));
}

std::size_t EncodeUtf8(std::u16string_view units, char* out) {
  std::size_t i = 0, n = 0;
  while (i < units.size()) {
    const std::size_t run = CopyAsciiUnits(units.data() + i, units.size() - i, out + n);
    i += run;
    n += run;
    // Two-byte forms come as words: encoded here in one go.
    for (; i < units.size() && units[i] >= 0x80 && units[i] < 0x800; ++i) {
      out[n++] = static_cast<char>(0xC0 | (units[i] >> 6));
      out[n++] = static_cast<char>(0x80 | (units[i] & 0x3F));
    }
    if (i == units.size() || units[i] < 0x80) continue;
    char32_t c = units[i++];
    if (c >= 0xD800 && c < 0xDC00 && i < units.size() && units[i] >= 0xDC00 && units[i] < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (units[i] - 0xDC00);
      ++i;
      out[n++] = static_cast<char>(0xF0 | (c >> 18));
      out[n++] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    } else {
      out[n++] = static_cast<char>(0xE0 | (c >> 12));
    }
    out[n++] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[n++] = static_cast<char>(0x80 | (c & 0x3F));
  }
  return n;
}

void AppendUtf8(std::string& out, std::u16string_view units) {
  const std::size_t old = out.size();
  out.resize(old + units.size() * kMaxUtf8PerUnit);
  out.resize(old + EncodeUtf8(units, out.data() + old));
}

void AssignFoldedUtf8(std::string& out, std::wstring_view text) {
  out.clear();
  ForEachCodePoint(text, [&](char32_t c) { AppendUtf8(out, FoldCase(c)); });
}

std::string FoldedUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  AssignFoldedUtf8(out, text);
  return out;
}

std::wstring UpperCaseText(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&](char32_t c) { AppendWide(out, UpperCase(c)); });
  return out;
}

bool FoldedStartsWith(std::string_view bytes, std::size_t at, std::string_view folded_prefix) {
  if (at < bytes.size() && (static_cast<unsigned char>(bytes[at]) & 0xC0) == 0x80) return false;
  std::size_t i = at;
  std::size_t j = 0;
  while (j < folded_prefix.size()) {
    if (i >= bytes.size()) return false;
    unsigned char b = static_cast<unsigned char>(bytes[i]);
    unsigned char p = static_cast<unsigned char>(folded_prefix[j]);
    if (b < 0x80 && p < 0x80) {
      if (FoldCase(b) != p) return false;
      ++i;
      ++j;
      continue;
    }
    if (FoldCase(DecodeUtf8(bytes, i)) != DecodeUtf8(folded_prefix, j)) return false;
  }
  return true;
}

std::size_t FoldedFind(std::string_view bytes, std::string_view folded_needle) {
  if (folded_needle.empty()) return 0;
  unsigned char first = static_cast<unsigned char>(folded_needle[0]);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    unsigned char b = static_cast<unsigned char>(bytes[at]);
    if ((b & 0xC0) == 0x80) continue;
    if (first < 0x80 && (b >= 0x80 || FoldCase(b) != first)) continue;
    if (FoldedStartsWith(bytes, at, folded_needle)) return at;
  }
  return std::string_view::npos;
}

}  // namespace tavrine::browsing
