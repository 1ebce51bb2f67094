#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "browsing/records.h"

namespace tavrine::browsing {

// The texts of the last field. "U" and "A" come first; a listing seldom has
// more than a handful of others.
class ModeTable {
 public:
  static constexpr std::uint8_t kEscaped = 0xFF;  // not packed: the line's fields are kept as text
  ModeTable();
  // The code of a mode text, kEscaped when the table is full.
  std::uint8_t CodeOf(std::string_view mode);
  const std::string& Text(std::uint8_t code) const { return texts_[code]; }
  const std::wstring& Wide(std::uint8_t code) const { return wides_[code]; }
  bool HoldsBackslash(std::uint8_t code) const { return backslash_[code]; }
  std::size_t MemoryBytes() const;

 private:
  std::vector<std::string> texts_;
  std::vector<std::wstring> wides_;
  std::array<bool, 256> backslash_{};
};

// One listing line less its folder, in 16 bytes. The fields of the usual
// shape ("/version/size/MM-DD-YYYY HH:MM:SS[/0]/mode", numbers as written
// by the engine, a date from 1970 on) are kept as numbers; any other line
// keeps them as text after its name.
struct EntryRecord {
  std::uint32_t text = 0;  // offset of the name in the names; the entry's bytes end where the next one's begin
  std::uint32_t seconds_or_name_size = 0;  // seconds since 1970, or for an escaped line the name's size
  std::uint64_t packed = 0;  // mode code : 8, "/0" field : 1, version : 16, size : 39

  std::uint8_t mode() const { return static_cast<std::uint8_t>(packed & 0xFF); }
  bool escaped() const { return mode() == ModeTable::kEscaped; }
  bool zero_field() const { return (packed >> 8) & 1; }
  std::uint32_t version() const { return static_cast<std::uint32_t>((packed >> 9) & 0xFFFF); }
  std::uint64_t size() const { return packed >> 25; }
};
static_assert(sizeof(EntryRecord) == 16);

// Packs the fields after the path ("" or starting with "/"); false when the
// line must keep them as text.
bool PackFields(std::u16string_view fields, ModeTable& modes, EntryRecord& record);
// The text PackFields read, from "/" on.
void AppendFields(const EntryRecord& record, const ModeTable& modes, std::string& out);
// Numbers, dates and mode of a packed record, as the lookups give them.
void FillPackedFields(const EntryRecord& record, const ModeTable& modes, FindData& data);

}  // namespace tavrine::browsing
