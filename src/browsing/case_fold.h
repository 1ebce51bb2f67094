#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace tavrine::browsing {

// One case table for both directions, so that two names are equal upper-cased
// exactly when they are equal lower-cased. Every pair keeps its UTF-8 length,
// so folded text has the byte offsets of the original.
char32_t FoldCase(char32_t c);
char32_t UpperCase(char32_t c);
// FoldCase beyond ASCII.
char32_t FoldCaseBeyondAscii(char32_t c);
// FoldCase with its ASCII part inline, for the loops over whole lines.
inline char32_t FoldCaseInline(char32_t c) {
  if (c < 0x80) return (c >= U'A' && c <= U'Z') ? c + 32 : c;
  return FoldCaseBeyondAscii(c);
}

// Code points of a wide string (UTF-16 pairs joined where wchar_t is 16 bits;
// lone surrogates kept as they are).
template <class Visit>
void ForEachCodePoint(std::wstring_view text, Visit&& visit) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = static_cast<char32_t>(text[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size()) {
        char32_t low = static_cast<char32_t>(text[i + 1]);
        if (low >= 0xDC00 && low < 0xE000) {
          c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
          ++i;
        }
      }
    }
    visit(c);
  }
}

// Generalized UTF-8: surrogate values are encoded like any other, so any
// UTF-16 text survives the round trip.
void AppendUtf8(std::string& out, char32_t c);
// Decodes one code point at bytes[i], advancing i; malformed bytes give U+FFFD.
char32_t DecodeUtf8(std::string_view bytes, std::size_t& i);
void AppendWide(std::wstring& out, char32_t c);
// Replaces out with the decoded bytes (keeps out's buffer).
void AssignWide(std::wstring& out, std::string_view bytes);
void AppendWide(std::wstring& out, std::string_view bytes);
// The same up to the first ASCII byte `stop`; returns its offset, or the size.
std::size_t AssignWideUntil(std::wstring& out, std::string_view bytes, char stop);
// Appends UTF-16 text as generalized UTF-8 (pairs joined, lone surrogates kept).
void AppendUtf8(std::string& out, std::u16string_view units);
// The same into out, which has room for kMaxUtf8PerUnit bytes a unit; returns the bytes written.
constexpr std::size_t kMaxUtf8PerUnit = 3;
std::size_t EncodeUtf8(std::u16string_view units, char* out);

std::string FoldedUtf8(std::wstring_view text);
void AssignFoldedUtf8(std::string& out, std::wstring_view text);  // keeps out's buffer
std::wstring UpperCaseText(std::wstring_view text);

// Whether the folded form of bytes[at...] begins with folded_prefix.
bool FoldedStartsWith(std::string_view bytes, std::size_t at, std::string_view folded_prefix);
// First offset where the folded bytes contain folded_needle, or npos.
std::size_t FoldedFind(std::string_view bytes, std::string_view folded_needle);

}  // namespace tavrine::browsing
