#include "browsing/case_fold.h"

#include <cstdint>
#include <cstring>

namespace tavrine::browsing {

namespace {

bool InRange(char32_t c, char32_t low, char32_t high) { return c >= low && c <= high; }

}  // namespace

char32_t FoldCase(char32_t c) {
  if (c < 0x80) return (c >= U'A' && c <= U'Z') ? c + 32 : c;
  if (InRange(c, 0xC0, 0xDE) && c != 0xD7) return c + 32;
  if (InRange(c, 0x100, 0x12F) || InRange(c, 0x132, 0x137) || InRange(c, 0x14A, 0x177))
    return (c % 2 == 0) ? c + 1 : c;
  if (InRange(c, 0x139, 0x148) || InRange(c, 0x179, 0x17E)) return (c % 2 == 1) ? c + 1 : c;
  if (InRange(c, 0x391, 0x3A9) && c != 0x3A2) return c + 32;
  if (InRange(c, 0x410, 0x42F)) return c + 32;
  if (InRange(c, 0x400, 0x40F)) return c + 80;
  return c;
}

char32_t UpperCase(char32_t c) {
  if (c < 0x80) return (c >= U'a' && c <= U'z') ? c - 32 : c;
  if (InRange(c, 0xE0, 0xFE) && c != 0xF7) return c - 32;
  if (InRange(c, 0x101, 0x12F) || InRange(c, 0x133, 0x137) || InRange(c, 0x14B, 0x177))
    return (c % 2 == 1) ? c - 1 : c;
  if (InRange(c, 0x13A, 0x148) || InRange(c, 0x17A, 0x17E)) return (c % 2 == 0) ? c - 1 : c;
  if (InRange(c, 0x3B1, 0x3C9) && c != 0x3C2) return c - 32;
  if (InRange(c, 0x430, 0x44F)) return c - 32;
  if (InRange(c, 0x450, 0x45F)) return c - 80;
  return c;
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
  std::size_t i = 0;
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

std::size_t CopyAsciiRun(const char16_t* in, std::size_t size, char* out) {
  std::size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    std::uint64_t words[2];
    std::memcpy(words, in + i, 16);
    if ((words[0] | words[1]) & 0xFF80FF80FF80FF80ULL) break;  // the mask is the same in every lane
    for (std::size_t k = 0; k < 8; ++k) out[i + k] = static_cast<char>(in[i + k]);
  }
  for (; i < size && in[i] < 0x80; ++i) out[i] = static_cast<char>(in[i]);
  return i;
}


// The decoding of AssignWide; with kStops it ends at the first `stop` byte
// and returns its offset (or the size).
template <bool kStops>
std::size_t Widen(std::wstring& out, std::string_view bytes, unsigned char stop) {
  // No byte sequence decodes to more units than it has bytes, so one resize
  // (within the capacity the caller's string already has) is enough.
  out.resize(bytes.size());
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  wchar_t* dst = out.data();
  std::size_t i = 0, n = 0;
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

void AssignWide(std::wstring& out, std::string_view bytes) { Widen<false>(out, bytes, 0); }

std::size_t AssignWideUntil(std::wstring& out, std::string_view bytes, char stop) {
  return Widen<true>(out, bytes, static_cast<unsigned char>(stop));
}

void AppendUtf8(std::string& out, std::u16string_view units) {
  std::size_t i = 0;
  while (i < units.size()) {
    const std::size_t old = out.size();
    out.resize(old + units.size() - i);  // room for an all-ASCII rest
    const std::size_t run = CopyAsciiRun(units.data() + i, units.size() - i, out.data() + old);
    out.resize(old + run);
    i += run;
    // Two-byte forms come as words: encoded here in one go.
    for (; i < units.size() && units[i] >= 0x80 && units[i] < 0x800; ++i) {
      out.push_back(static_cast<char>(0xC0 | (units[i] >> 6)));
      out.push_back(static_cast<char>(0x80 | (units[i] & 0x3F)));
    }
    if (i == units.size() || units[i] < 0x80) continue;
    char32_t c = units[i++];
    if (c >= 0xD800 && c < 0xDC00 && i < units.size() && units[i] >= 0xDC00 && units[i] < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (units[i] - 0xDC00);
      ++i;
    }
    AppendUtf8(out, c);
  }
}

std::string FoldedUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&](char32_t c) { AppendUtf8(out, FoldCase(c)); });
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
