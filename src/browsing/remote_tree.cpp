#include "browsing/remote_tree.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <limits>

#include "browsing/case_fold.h"
#include "browsing/file_time.h"
#include "browsing/unit_scan.h"
#include "foundation/trace_log.h"
#include "platform/file_mapping.h"
#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::browsing {

void SetEmptyValues(FindData& data) {
  data.nFileSize = -1;
  data.nVersion = -1;
  data.ftCreationTime = {0xFFFFFFFFu, 0xFFFFFFFFu};
  data.ftLastWriteTime = {0xFFFFFFFFu, 0xFFFFFFFFu};
  data.cFilename.clear();
  data.strUnimode.clear();
}

// ---- the tree --------------------------------------------------------------

ListingNode* ListingNode::AppendChild(const std::wstring& name) {
  owned_.push_back(std::make_unique<ListingNode>());
  ListingNode* node = owned_.back().get();
  node->name_ = name;
  node->parent_ = this;
  if (!first_child_) {
    first_child_ = node;
  } else {
    last_child_->next_sibling_ = node;
  }
  last_child_ = node;
  ++child_count_;
  return node;
}

// ---- fields of a line --------------------------------------------------------

namespace {

constexpr std::size_t kTextLimit = std::numeric_limits<std::uint32_t>::max() - 8;

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

// Plain digits, as the engine writes them, short enough that they cannot
// overflow: read in one loop. False sends the text the general way.
template <class Char>
bool PlainDigits(std::basic_string_view<Char> text, std::int64_t& value) {
  if (text.empty() || text.size() > 18) return false;
  value = 0;
  for (Char c : text) {
    const auto digit = static_cast<std::uint32_t>(c) - '0';
    if (digit > 9) return false;
    value = value * 10 + digit;
  }
  return true;
}

template <class Char>
std::int64_t LeadingInteger(std::basic_string_view<Char> text, std::int64_t low, std::int64_t high) {
  if (std::int64_t value; PlainDigits(text, value)) return std::clamp(value, low, high);
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  std::int64_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    if (value < std::numeric_limits<std::int64_t>::max() / 10 - 10) value = value * 10 + (text[i] - '0');
  }
  if (negative) value = -value;
  return std::clamp(value, low, high);
}

// The split of a line at "/": field 1..3, the date and the last field.
template <class Char>
struct Fields {
  std::basic_string_view<Char> version, size, date, mode;
  std::size_t count = 0;
};

// The next "/" at or after `from`, or npos. Fields are short, so eight bytes
// are tested at a time in place of a library call per field.
std::size_t FindSlash(std::string_view text, std::size_t from) {
  constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
  constexpr std::uint64_t kSlashes = kOnes * '/';
  std::size_t i = from;
  if constexpr (std::endian::native == std::endian::little) {
    for (; i + 8 <= text.size(); i += 8) {
      std::uint64_t word;
      std::memcpy(&word, text.data() + i, 8);
      const std::uint64_t x = word ^ kSlashes;
      // High bit set in each byte that was a slash (and maybe above one).
      const std::uint64_t hits = (x - kOnes) & ~x & (kOnes * 0x80);
      if (hits) return i + static_cast<std::size_t>(std::countr_zero(hits) / 8);
    }
  }
  for (; i < text.size(); ++i)
    if (text[i] == '/') return i;
  return std::string_view::npos;
}

std::size_t FindSlash(std::wstring_view text, std::size_t from) { return text.find(L'/', from); }

// first_slash: where the path field ends (npos when the line has no "/").
template <class Char>
Fields<Char> SplitFields(std::basic_string_view<Char> line, std::size_t first_slash) {
  Fields<Char> fields;
  fields.count = 1;
  fields.mode = line.substr(0, first_slash);
  for (std::size_t end = first_slash; end != line.npos;) {
    const std::size_t begin = end + 1;
    end = FindSlash(line, begin);
    const std::basic_string_view<Char> field = line.substr(begin, end == line.npos ? line.npos : end - begin);
    switch (fields.count) {
      case 1: fields.version = field; break;
      case 2: fields.size = field; break;
      case 3: fields.date = field; break;
      default: break;
    }
    ++fields.count;
    fields.mode = field;
  }
  return fields;
}

template <class Char>
bool IsOrdinaryMode(std::basic_string_view<Char> mode) {
  return mode.size() == 1 && (mode[0] == 'U' || mode[0] == 'A');
}

template <class Char>
void FillNumbersAndDate(const Fields<Char>& fields, FindData& data) {
  data.nVersion = static_cast<std::int16_t>(LeadingInteger(fields.version, -32768, 32767));
  data.nFileSize = LeadingInteger(fields.size, std::numeric_limits<std::int64_t>::min(),
                                  std::numeric_limits<std::int64_t>::max());
  DateFailure failure = ConvertListingDate(fields.date, data.ftLastWriteTime);
  if (failure == DateFailure::kNone) {
    data.ftCreationTime = data.ftLastWriteTime;
  } else {
    foundation::TraceException(L"ISysTimeToFileTime", DescribeDateFailure(failure));
  }
}

}  // namespace

std::int64_t LeadingFieldInteger(std::wstring_view field, std::int64_t low, std::int64_t high) {
  return LeadingInteger(field, low, high);
}

void FillFromLine(std::wstring_view line, std::size_t name_begin, FindData& data) {
  std::size_t path_end = line.find(L'/', std::min(name_begin, line.size()));
  if (path_end == line.npos) path_end = line.size();
  data.cFilename.assign(line.substr(std::min(name_begin, line.size()),
                                    path_end - std::min(name_begin, path_end)));
  Fields<wchar_t> fields = SplitFields(line, line.find(L'/'));
  FillNumbersAndDate(fields, data);
  if (fields.count >= 5 && !IsOrdinaryMode(fields.mode)) {
    data.strUnimode.assign(fields.mode);
  } else {
    data.strUnimode.clear();
  }
}

// The general way: a whole line, searched for the folder path unless the
// index vouches that it starts with it.
void RemoteListing::Fill(std::uint32_t position, EnumCursor& cursor, bool at_start, FindData& data) const {
  if (at_start && !records_[position - 1].escaped()) {
    FillFromPacked(position, cursor, data);
    return;
  }
  EntryUtf8(static_cast<std::int32_t>(position), cursor.line);
  const std::string_view line = cursor.line;
  const std::string_view query = cursor.query;
  const bool starts = at_start || FoldedStartsWith(line, 0, query);
  std::size_t at = starts ? 0 : FoldedFind(line, query);
  if (at == std::string_view::npos) at = 0;
  const std::size_t name_begin = std::min(at + query.size(), line.size());
  std::size_t first_slash;
  if (starts && query.find('/') == std::string_view::npos) {
    // Nothing before the name holds a "/" (folding makes no "/"): the name
    // ends at the first one, which copying the name finds.
    first_slash = name_begin + AssignWideUntil(data.cFilename, line.substr(name_begin), '/');
    if (first_slash == line.size()) first_slash = std::string_view::npos;
  } else {
    // The first "/" ends the path, and the name with it, unless the folder
    // path itself holds a "/".
    first_slash = FindSlash(line, 0);
    std::size_t path_end = first_slash >= name_begin ? first_slash : FindSlash(line, name_begin);
    if (path_end == line.npos) path_end = line.size();
    AssignWide(data.cFilename, line.substr(name_begin, path_end - name_begin));
  }
  Fields<char> fields = SplitFields(line, first_slash);
  FillNumbersAndDate(fields, data);
  if (fields.count >= 5 && !IsOrdinaryMode(fields.mode)) {
    AssignWide(data.strUnimode, fields.mode);
  } else {
    data.strUnimode.clear();
  }
}

// A line known to start with the folder path, fields packed: the name is the
// path from the query's end, made of the folder's path (widened once per
// folder) and the record's name.
void RemoteListing::FillFromPacked(std::uint32_t position, EnumCursor& cursor, FindData& data) const {
  cursor.spelling_run = SpellingRunOf(position, cursor.spelling_run);
  const std::uint32_t spelling = spelling_runs_[cursor.spelling_run].spelling;
  const std::size_t name_begin = cursor.query.size();
  if (spelling != cursor.spelling) {
    cursor.spelling = spelling;
    cursor.spelling_path.clear();
    if (spelling != kNone) AppendSpellingPath(spelling, cursor.spelling_path);
    cursor.name_head.clear();
    if (name_begin < cursor.spelling_path.size())
      AssignWide(cursor.name_head, std::string_view(cursor.spelling_path).substr(name_begin));
  }
  const std::string_view name = NameOf(position);
  const std::size_t path_size = cursor.spelling_path.size();
  if (name_begin <= path_size) {
    data.cFilename.assign(cursor.name_head);
    AppendWide(data.cFilename, name);
  } else {
    AssignWide(data.cFilename, name.substr(std::min(name_begin - path_size, name.size())));
  }
  FillPackedFields(records_[position - 1], modes_, data);
}

// ---- reading a listing file ----------------------------------------------------

namespace {

// Index of the first unit at or after `at` that ends a line (CR or LF), or the size.
std::size_t FindLineEnd(std::u16string_view text, std::size_t at) {
  return FindEitherUnit(text.data(), at, text.size(), u'\r', u'\n');
}

// The lines of a UTF-16LE stream, read piece by piece so that a large listing
// is never held twice. CR, LF or CRLF end a line; a leading BOM is skipped; an
// odd last byte is ignored.
class Utf16Lines {
 public:
  explicit Utf16Lines(std::istream& in) : in_(in) {}
  // The next line, valid until the next call; false after the last.
  bool Next(std::u16string_view& line);

 private:
  void Refill();

  static constexpr std::size_t kChunkUnits = std::size_t{1} << 16;  // stays in the L2 cache
  std::istream& in_;
  // Filled by reads only: a string would clear every chunk before the read.
  std::unique_ptr<char16_t[]> units_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
  std::size_t at_ = 0;
  std::size_t scanned_ = 0;  // no line end before here: a very long line is scanned once
  bool started_ = false;
  bool at_end_ = false;
};

void Utf16Lines::Refill() {
  // Keep the unfinished line.
  const std::size_t kept = size_ - at_;
  if (at_ > 0 && kept > 0) std::memmove(units_.get(), units_.get() + at_, kept * sizeof(char16_t));
  scanned_ = scanned_ > at_ ? scanned_ - at_ : 0;
  at_ = 0;
  size_ = kept;
  if (capacity_ < kept + kChunkUnits) {
    const std::size_t capacity = std::max(2 * capacity_, kept + kChunkUnits);
    std::unique_ptr<char16_t[]> grown(new char16_t[capacity]);
    if (kept > 0) std::memcpy(grown.get(), units_.get(), kept * sizeof(char16_t));
    units_ = std::move(grown);
    capacity_ = capacity;
  }
  in_.read(reinterpret_cast<char*>(units_.get() + kept), static_cast<std::streamsize>(kChunkUnits * 2));
  const std::size_t got = static_cast<std::size_t>(in_.gcount()) / 2;
  size_ = kept + got;
  at_end_ = got < kChunkUnits;  // a read stops short only at the end
  if constexpr (std::endian::native == std::endian::big) {
    for (std::size_t i = kept; i < size_; ++i)
      units_[i] = static_cast<char16_t>((units_[i] >> 8) | (units_[i] << 8));
  }
  if (!started_) {
    started_ = true;
    if (size_ > 0 && units_[0] == 0xFEFF) at_ = 1;
  }
}

bool Utf16Lines::Next(std::u16string_view& line) {
  if (!started_) Refill();
  while (true) {
    const std::u16string_view buffer(units_.get(), size_);
    const std::size_t end = FindLineEnd(buffer, std::max(at_, scanned_));
    // A CR last in the buffer may be the first half of a CRLF.
    const bool open = end == buffer.size() || (buffer[end] == u'\r' && end + 1 == buffer.size());
    if (open && !at_end_) {
      scanned_ = end;
      Refill();
      continue;
    }
    if (at_ >= buffer.size()) return false;
    line = buffer.substr(at_, end - at_);
    std::size_t next = end + 1;
    if (next < buffer.size() && buffer[end] == u'\r' && buffer[next] == u'\n') ++next;
    at_ = std::min(next, buffer.size());
    return true;
  }
}

// Case-folds UTF-8 bytes (folding keeps the byte length).
void FoldBytes(std::string_view bytes, std::string& out) {
  out.clear();
  for (std::size_t i = 0; i < bytes.size();) {
    unsigned char b = static_cast<unsigned char>(bytes[i]);
    if (b < 0x80) {
      out.push_back(static_cast<char>(FoldCase(b)));
      ++i;
    } else {
      AppendUtf8(out, FoldCase(DecodeUtf8(bytes, i)));
    }
  }
}

}  // namespace


// ---- loading -----------------------------------------------------------------

namespace {

// The first `unit` at or after `from`, or the size.
std::size_t FindUnit(std::u16string_view text, std::size_t from, char16_t unit) {
  return FindEitherUnit(text.data(), from, text.size(), unit, unit);
}

}  // namespace


RemoteListing::RemoteListing() { root_.name_ = L"\\"; }

void RemoteListing::BeginFile(const std::wstring& machine) {
  machine_ = machine;
  machine16_.clear();
  if (!machine.empty()) {
    machine_mode_ = true;
    ForEachCodePoint(machine, [&](char32_t c) {
      if (c >= 0x10000) {
        machine16_.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
        machine16_.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
      } else {
        machine16_.push_back(static_cast<char16_t>(c));
      }
    });
    machine16_.push_back(u'\\');
  }
  first_line_of_file_ = true;
  marked_form_ = false;
  file_ended_ = false;
}

bool RemoteListing::AddLine(std::u16string_view line) {
  if (file_ended_ || overflowed_) return false;
  std::size_t begin = 0, end = line.size();
  while (begin < end && IsBlank(line[begin])) ++begin;
  while (end > begin && IsBlank(line[end - 1])) --end;
  if (end - begin < 3) {
    file_ended_ = true;
    return false;
  }
  if (first_line_of_file_) {
    first_line_of_file_ = false;
    std::size_t last = line.rfind(u'/');
    if (last != line.npos) {
      std::size_t before = last == 0 ? line.npos : line.rfind(u'/', last - 1);
      std::size_t start = before == line.npos ? 0 : before + 1;
      marked_form_ = last - start < 2;
    }
  }
  if (marked_form_ && line.size() >= 3 && line[line.size() - 3] == u'1') {
    rewritten_.assign(line.substr(0, line.size() >= 4 ? line.size() - 4 : 0));
    rewritten_.append(line.substr(line.size() - 2));
    line = rewritten_;
  }
  std::u16string_view stored = line;
  if (!machine16_.empty()) {
    line16_.assign(machine16_);
    line16_.append(line);
    stored = line16_;
  }
  // A line in the last line's folder has that line's first-level name too.
  const std::size_t known = previous_spelling_ == kNone ? 0 : previous_prefix_.size();
  bool same_start = known > 0 && stored.size() > known &&
                    std::memcmp(stored.data(), previous_prefix_.data(), known * sizeof(char16_t)) == 0;
  if ((!same_start || !machine16_.empty()) && StartsNewNode(line)) {
    current_node_ = root_.AppendChild(machine_.empty() ? previous_name_ : machine_);
    current_node_->first_entry_ = count() + 1;
    runs_.push_back(Run{current_node_, {}, {}, false, {}});
    run_by_name_.emplace(FoldedUtf8(current_node_->name_), runs_.size() - 1);
    previous_spelling_ = kNone;  // the folder part's check depends on the run's key
    same_start = false;
  }
  StoreEntry(stored, same_start ? known : 0);
  if (overflowed_) return false;
  current_node_->last_entry_ = count();
  return true;
}

bool RemoteListing::StartsNewNode(std::u16string_view line) {
  bool new_node = current_node_ == nullptr;
  if (!machine_.empty()) {
    if (!new_node && previous_name_ != machine_) new_node = true;
    if (new_node) previous_name_ = machine_;
    return new_node;
  }
  const std::size_t slash = FindUnit(line, 0, u'\\');
  if (slash == line.size()) return new_node;
  std::u16string_view head = line.substr(0, slash + 1);
  if (head.size() == previous_head_.size() &&
      std::memcmp(head.data(), previous_head_.data(), head.size() * sizeof(char16_t)) == 0)
    return new_node;
  previous_head_.assign(head);
  std::wstring wide;
  for (char16_t c : head) wide.push_back(static_cast<wchar_t>(c));
  std::wstring name = UpperCaseText(wide);
  if (name != previous_name_) {
    previous_name_ = std::move(name);
    new_node = true;
  }
  return new_node;
}

// The UTF-8 form of a piece of a line, valid until the next call. The
// buffer only grows, so no piece pays for clearing it.
std::string_view RemoteListing::Utf8Of(std::u16string_view text) {
  const std::size_t room = text.size() * kMaxUtf8PerUnit;
  if (utf8_.size() < room) utf8_.resize(std::max(room, 2 * utf8_.size()));
  return std::string_view(utf8_.data(), EncodeUtf8(text, utf8_.data()));
}

namespace {

// The first of two units at or after `from`, or the size.
std::size_t FindEither(std::u16string_view text, std::size_t from, char16_t one, char16_t other) {
  return FindEitherUnit(text.data(), from, text.size(), one, other);
}

// Unit by unit: folding leaves surrogates alone, and a backslash is never
// half of a pair, so this agrees with the folded UTF-8 comparison wherever
// a match ends at a backslash, and finds no fewer places elsewhere.
bool FoldedStartsWith16(std::u16string_view line, std::size_t at, std::u16string_view folded) {
  if (at + folded.size() > line.size()) return false;
  for (std::size_t k = 0; k < folded.size(); ++k)
    if (FoldCaseInline(line[at + k]) != folded[k]) return false;
  return true;
}

}  // namespace

// A line becomes its folder's spelling, its name and its fields; the index
// notes what it needs while the line is still in the cache.
// known: the line starts with the last line's folder part, this long (or 0).
void RemoteListing::StoreEntry(std::u16string_view line, std::size_t known) {
  const bool same_start = known > 0;
  // Most lines are in the last line's folder: then only the name is searched.
  std::size_t path_end, folder_end;
  const std::size_t stop = same_start ? FindEither(line, known, u'/', u'\\') : 0;
  if (same_start && (stop == line.size() || line[stop] == u'/')) {
    path_end = stop;
    folder_end = known;
  } else {
    path_end = FindUnit(line, stop, u'/');
    folder_end = path_end;
    while (folder_end > 0 && line[folder_end - 1] != u'\\') --folder_end;
  }
  const std::u16string_view prefix = line.substr(0, folder_end);  // ends with a backslash, or empty
  const std::u16string_view name = line.substr(folder_end, path_end - folder_end);
  const std::u16string_view fields = line.substr(path_end);
  if (names_.size() + line.size() * kMaxUtf8PerUnit > kTextLimit ||
      spelling_text_.size() + prefix.size() * kMaxUtf8PerUnit > kTextLimit ||
      records_.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    overflowed_ = true;
    foundation::Trace(L"InitTree : listing too large, the rest is ignored");
    return;
  }
  const auto position = static_cast<std::uint32_t>(records_.size() + 1);
  Run& run = runs_.back();
  if (position == static_cast<std::uint32_t>(run.node->first_entry_)) {
    const std::size_t head_end = FindUnit(line, 0, u'\\');
    if (head_end < line.size()) {
      for (std::size_t k = 0; k <= head_end; ++k) run.key16.push_back(static_cast<char16_t>(FoldCase(line[k])));
      run.key.assign(Utf8Of(run.key16));
      run.has_key = true;
    }
  }

  std::uint32_t spelling = kNone;
  if (!prefix.empty()) {
    if (same_start && prefix.size() == known) {
      spelling = previous_spelling_;
    } else {
      spelling = SpellingOf(prefix);
      prefix_needs_check_ = NeedsCheck(run, prefix);
    }
  }
  if (spelling_runs_.empty() || spelling_runs_.back().spelling != spelling)
    spelling_runs_.push_back(SpellingRun{position, spelling});
  EntryRecord record;
  record.text = static_cast<std::uint32_t>(names_.size());
  names_.append(Utf8Of(name));
  if (!PackFields(fields, modes_, record)) {
    record.seconds_or_name_size = static_cast<std::uint32_t>(names_.size() - record.text);
    record.packed = ModeTable::kEscaped;
    names_.append(Utf8Of(fields));
  }
  records_.push_back(record);

  // A key that starts a line ends at a backslash of its folder part (a key
  // with a "/" never starts one), and one found again ends at a backslash of
  // the folder part (the name has none) or lies wholly in the fields: the
  // folder part's answer holds for all its lines.
  bool needs_check;
  if (!run.has_key || prefix.empty()) {
    needs_check = true;
  } else {
    const bool fields_backslash = record.escaped() ? FindUnit(fields, 0, u'\\') < fields.size()
                                                   : modes_.HoldsBackslash(record.mode());
    needs_check = prefix_needs_check_ || (fields_backslash && NeedsCheck(run, line));
  }
  if (needs_check) run.check.push_back(position);
}

// Sized from the first lines, the records and names are allocated once:
// growing them step by step would leave the outgrown copies resident in the heap.
void RemoteListing::ReserveForFile(std::size_t file_units, std::size_t units_per_line,
                                   std::size_t names_per_line) {
  const std::size_t lines = file_units / std::max<std::size_t>(units_per_line, 1);
  const std::size_t more = lines + lines / 16 + 1024;
  records_.reserve(records_.size() + more);
  names_.reserve(names_.size() + more * (names_per_line + 1));
  // The folders' arrays by the share the first lines show, a quarter more:
  // what is reserved and never used is never touched either.
  const auto scaled = [&](std::size_t seen) { return seen + seen * more / kSampleLines * 5 / 4; };
  spellings_.reserve(scaled(spellings_.size()));
  spelling_text_.reserve(scaled(spelling_text_.size()));
  spelling_runs_.reserve(scaled(spelling_runs_.size()));
  folders_.reserve(scaled(folders_.size()));
  folded_text_.reserve(scaled(folded_text_.size()));
}

bool RemoteListing::AddFile(const std::wstring& path, const std::wstring& machine, FileRead read) {
  platform::FileMapping mapping;
  const bool mapped = read == FileRead::kMapped && std::endian::native == std::endian::little && mapping.Open(path);
  std::ifstream in;
  std::size_t units = mapping.size() / 2;
  if (!mapped) {
    in.open(platform::ToFsPath(path), std::ios::binary);
    if (!in) return false;
    in.seekg(0, std::ios::end);
    std::streamoff size = in.tellg();
    if (size < 0) return false;
    in.seekg(0, std::ios::beg);
    units = static_cast<std::size_t>(size) / 2;
  }
  BeginFile(machine);
  std::size_t seen_lines = 0, seen_units = 0;
  const std::size_t names_before = names_.size();
  const auto add = [&](std::u16string_view line) {
    if (!AddLine(line)) return false;
    seen_units += line.size() + 2;
    if (++seen_lines == kSampleLines)
      ReserveForFile(units, seen_units / seen_lines, (names_.size() - names_before) / seen_lines);
    // Pending window messages run between lines, though not after every one:
    // that would cost a large share of the load time of a long listing.
    if (seen_lines % kLinesPerMessagePump == 0) platform::CurrentUi().PumpMessages();
    return true;
  };
  if (mapped) {
    // The pages are the file's: lines are read where they lie.
    const auto* text = reinterpret_cast<const char16_t*>(mapping.data());
    std::size_t at = units > 0 && text[0] == 0xFEFF ? 1 : 0;
    while (at < units) {
      const std::size_t end = FindEitherUnit(text, at, units, u'\r', u'\n');
      if (!add(std::u16string_view(text + at, end - at))) break;
      at = end + 1;
      if (at < units && text[end] == u'\r' && text[at] == u'\n') ++at;
    }
    return true;
  }
  Utf16Lines lines(in);
  std::u16string_view line;
  while (lines.Next(line) && add(line)) {
  }
  return true;
}

std::string_view RemoteListing::RecordBytes(std::uint32_t position) const {
  const std::uint32_t begin = records_[position - 1].text;
  const std::size_t end = position < records_.size() ? records_[position].text : names_.size();
  return std::string_view(names_).substr(begin, end - begin);
}

std::string_view RemoteListing::NameOf(std::uint32_t position) const {
  const EntryRecord& record = records_[position - 1];
  const std::string_view bytes = RecordBytes(position);
  return record.escaped() ? bytes.substr(0, record.seconds_or_name_size) : bytes;
}

void RemoteListing::EntryUtf8(std::int32_t position, std::string& out) const {
  out.clear();
  if (position < 1 || position > count()) return;
  const auto p = static_cast<std::uint32_t>(position);
  const std::uint32_t spelling = spelling_runs_[SpellingRunOf(p, kNone)].spelling;
  if (spelling != kNone) AppendSpellingPath(spelling, out);
  out.append(RecordBytes(p));
  if (!records_[p - 1].escaped()) AppendFields(records_[p - 1], modes_, out);
}

std::wstring RemoteListing::Entry(std::int32_t position) const {
  std::string bytes;
  EntryUtf8(position, bytes);
  std::wstring out;
  AssignWide(out, bytes);
  return out;
}

// ---- folders -----------------------------------------------------------------

namespace {

std::uint32_t HashName(std::uint32_t parent, std::string_view name) {
  const std::uint64_t h = std::hash<std::string_view>{}(name) ^ (std::uint64_t{parent} * 0x9E3779B97F4A7C15ULL);
  return static_cast<std::uint32_t>(h ^ (h >> 32));
}

}  // namespace

std::string_view RemoteListing::SpellingName(std::uint32_t spelling) const {
  const Spelling& s = spellings_[spelling];
  return std::string_view(spelling_text_).substr(s.text, s.size);
}

void RemoteListing::AppendSpellingPath(std::uint32_t spelling, std::string& out) const {
  std::size_t total = 0;
  for (std::uint32_t s = spelling; s != kNone; s = spellings_[s].parent) total += spellings_[s].size + 1;
  std::size_t end = out.size() + total;
  out.resize(end);
  // Filled from its end, so a deep folder needs no stack.
  for (std::uint32_t s = spelling; s != kNone; s = spellings_[s].parent) {
    out[--end] = '\\';
    end -= spellings_[s].size;
    std::memcpy(out.data() + end, spelling_text_.data() + spellings_[s].text, spellings_[s].size);
  }
}

std::uint32_t RemoteListing::SpellingRunOf(std::uint32_t position, std::uint32_t hint) const {
  const auto covers = [&](std::size_t run) {
    return spelling_runs_[run].begin <= position &&
           (run + 1 == spelling_runs_.size() || spelling_runs_[run + 1].begin > position);
  };
  if (hint < spelling_runs_.size()) {
    if (covers(hint)) return hint;
    if (hint + 1 < spelling_runs_.size() && covers(hint + 1)) return hint + 1;
  }
  const auto after = std::upper_bound(spelling_runs_.begin(), spelling_runs_.end(), position,
                                      [](std::uint32_t p, const SpellingRun& run) { return p < run.begin; });
  return static_cast<std::uint32_t>(after - spelling_runs_.begin() - 1);
}

namespace {

// Inserts `id` with `hash`; grows (re-hashing with hash_of) to stay at most half full.
template <class Slots, class HashOf>
void InsertSlot(Slots& slots, std::uint32_t id, std::uint32_t hash, HashOf&& hash_of) {
  constexpr std::uint32_t kFree = UINT32_MAX;
  if ((slots.used + 1) * 2 > slots.ids.size()) {
    std::vector<std::uint32_t> grown(std::max<std::size_t>(64, slots.ids.size() * 2), kFree);
    const std::size_t mask = grown.size() - 1;
    for (std::uint32_t old : slots.ids) {
      if (old == kFree) continue;
      std::size_t slot = hash_of(old) & mask;
      while (grown[slot] != kFree) slot = (slot + 1) & mask;
      grown[slot] = old;
    }
    slots.ids.swap(grown);
  }
  const std::size_t mask = slots.ids.size() - 1;
  std::size_t slot = hash & mask;
  while (slots.ids[slot] != kFree) slot = (slot + 1) & mask;
  slots.ids[slot] = id;
  ++slots.used;
}

}  // namespace

// Lines of one folder come together, and the next folder shares most of the
// path: only the names after the common part are looked up.
std::uint32_t RemoteListing::SpellingOf(std::u16string_view prefix) {
  if (previous_spelling_ != kNone && prefix.size() == previous_prefix_.size() &&
      std::memcmp(prefix.data(), previous_prefix_.data(), prefix.size() * sizeof(char16_t)) == 0)
    return previous_spelling_;
  std::size_t common = 0;
  const std::size_t limit = std::min(prefix.size(), previous_prefix_.size());
  while (common < limit && prefix[common] == previous_prefix_[common]) ++common;
  // prefix_chain_ holds pairs: end of a folder in previous_prefix_, its spelling.
  while (!prefix_chain_.empty() && prefix_chain_[prefix_chain_.size() - 2] > common)
    prefix_chain_.resize(prefix_chain_.size() - 2);
  std::size_t at = prefix_chain_.empty() ? 0 : prefix_chain_[prefix_chain_.size() - 2];
  std::uint32_t spelling = prefix_chain_.empty() ? kNone : prefix_chain_.back();
  while (at < prefix.size()) {
    const std::size_t end = FindUnit(prefix, at, u'\\');
    spelling = InternSpelling(spelling, Utf8Of(prefix.substr(at, end - at)));
    prefix_chain_.push_back(static_cast<std::uint32_t>(end + 1));
    prefix_chain_.push_back(spelling);
    at = end + 1;
  }
  previous_prefix_.assign(prefix);
  previous_spelling_ = spelling;
  return spelling;
}

std::uint32_t RemoteListing::InternSpelling(std::uint32_t parent, std::string_view name) {
  const std::uint32_t hash = HashName(parent, name);
  if (!spelling_slots_.ids.empty()) {
    const std::size_t mask = spelling_slots_.ids.size() - 1;
    for (std::size_t slot = hash & mask; spelling_slots_.ids[slot] != kNone; slot = (slot + 1) & mask) {
      const std::uint32_t id = spelling_slots_.ids[slot];
      if (spellings_[id].parent == parent && SpellingName(id) == name) return id;
    }
  }
  const auto id = static_cast<std::uint32_t>(spellings_.size());
  spellings_.push_back(Spelling{parent, static_cast<std::uint32_t>(spelling_text_.size()),
                                static_cast<std::uint32_t>(name.size()), kNone});
  spelling_text_.append(name);
  InsertSlot(spelling_slots_, id, hash,
             [&](std::uint32_t s) { return HashName(spellings_[s].parent, SpellingName(s)); });
  FoldBytes(name, folded_scratch_);
  spellings_[id].folder = InternFolder(parent == kNone ? kNone : spellings_[parent].folder, folded_scratch_);
  return id;
}

std::uint32_t RemoteListing::FindChildFolder(std::uint32_t parent, std::string_view folded,
                                             std::uint32_t hash) const {
  if (folder_slots_.ids.empty()) return kNone;
  const std::size_t mask = folder_slots_.ids.size() - 1;
  for (std::size_t slot = hash & mask; folder_slots_.ids[slot] != kNone; slot = (slot + 1) & mask) {
    const Folder& folder = folders_[folder_slots_.ids[slot]];
    // Names are kept folded, so equal bytes mean the same folder.
    if (folder.hash == hash && folder.parent == parent && FolderName(folder) == folded)
      return folder_slots_.ids[slot];
  }
  return kNone;
}

std::uint32_t RemoteListing::InternFolder(std::uint32_t parent, std::string_view folded) {
  const std::uint32_t hash = HashName(parent, folded);
  if (std::uint32_t found = FindChildFolder(parent, folded, hash); found != kNone) return found;
  const auto id = static_cast<std::uint32_t>(folders_.size());
  Folder folder;
  folder.folded = static_cast<std::uint32_t>(folded_text_.size());
  folder.size = static_cast<std::uint32_t>(folded.size());
  folded_text_.append(folded);
  folder.hash = hash;
  folder.parent = parent;
  if (parent != kNone) {
    folder.next_sibling = folders_[parent].first_child;
    folders_[parent].first_child = id;
  }
  folders_.push_back(folder);
  InsertSlot(folder_slots_, id, hash, [&](std::uint32_t f) { return folders_[f].hash; });
  return id;
}

std::uint32_t RemoteListing::FindFolder(std::string_view folded) const {
  std::uint32_t folder = kNone;
  for (std::size_t at = 0; at < folded.size();) {
    const std::size_t end = folded.find('\\', at);
    if (end == std::string_view::npos) return kNone;
    const std::string_view name = folded.substr(at, end - at);
    folder = FindChildFolder(folder, name, HashName(folder, name));
    if (folder == kNone) return kNone;
    at = end + 1;
  }
  return folder;
}

// ---- the index ---------------------------------------------------------------

bool RemoteListing::NeedsCheck(const Run& run, std::u16string_view line) {
  if (!run.has_key || !FoldedStartsWith16(line, 0, run.key16)) return true;
  // The key seen again later in the line: a match could start there. The
  // unit before each backslash rules out most places at once.
  const std::u16string_view key = run.key16;
  const char16_t key_before = key.size() >= 2 ? key[key.size() - 2] : 0;
  for (std::size_t j = FindUnit(line, key.size(), u'\\'); j < line.size(); j = FindUnit(line, j + 1, u'\\')) {
    if (key.size() >= 2 && FoldCaseInline(line[j - 1]) != key_before) continue;
    if (FoldedStartsWith16(line, j + 1 - key.size(), key)) return true;
  }
  return false;
}

void RemoteListing::Finish() {
  if (finished_) return;
  // Stretches of lines directly in a folder, from the runs of spellings.
  struct FolderStretch {
    std::uint32_t folder;
    Stretch stretch;
  };
  std::vector<FolderStretch> loaded;
  loaded.reserve(spelling_runs_.size());
  for (std::size_t k = 0; k < spelling_runs_.size(); ++k) {
    const SpellingRun& run = spelling_runs_[k];
    if (run.spelling == kNone) continue;
    const std::uint32_t end = k + 1 < spelling_runs_.size() ? spelling_runs_[k + 1].begin
                                                            : static_cast<std::uint32_t>(records_.size() + 1);
    const std::uint32_t folder = spellings_[run.spelling].folder;
    if (!loaded.empty() && loaded.back().folder == folder && loaded.back().stretch.end == run.begin) {
      loaded.back().stretch.end = end;
    } else {
      loaded.push_back(FolderStretch{folder, Stretch{run.begin, end}});
    }
  }
  // Grouped by folder (a counting sort keeps file order).
  std::vector<std::uint32_t> counts(folders_.size() + 1, 0);
  for (const FolderStretch& s : loaded) ++counts[s.folder + 1];
  for (std::size_t f = 0; f < folders_.size(); ++f) {
    counts[f + 1] += counts[f];
    folders_[f].direct_begin = folders_[f].direct_end = counts[f];
  }
  direct_stretches_.assign(counts.back(), Stretch{});
  for (const FolderStretch& s : loaded) {
    Folder& folder = folders_[s.folder];
    direct_stretches_[folder.direct_end++] = s.stretch;
    folder.min = std::min(folder.min, s.stretch.begin);
    folder.max = std::max(folder.max, s.stretch.end - 1);
    folder.count += s.stretch.end - s.stretch.begin;
  }
  // Parents come before their children, so one backward pass sums subtrees.
  for (std::size_t f = folders_.size(); f-- > 0;) {
    const Folder& folder = folders_[f];
    if (folder.parent == kNone || folder.count == 0) continue;
    Folder& parent = folders_[folder.parent];
    parent.min = std::min(parent.min, folder.min);
    parent.max = std::max(parent.max, folder.max);
    parent.count += folder.count;
  }
  // Only loading needs these.
  std::vector<std::uint32_t>().swap(spelling_slots_.ids);
  spelling_slots_.used = 0;
  std::u16string().swap(previous_prefix_);
  std::vector<std::uint32_t>().swap(prefix_chain_);
  finished_ = true;
}

std::size_t RemoteListing::MemoryBytes() const {
  // Records and names by size: what their reservation holds beyond is never touched.
  std::size_t bytes = records_.size() * sizeof(EntryRecord) + names_.size() + modes_.MemoryBytes();
  bytes += spellings_.capacity() * sizeof(Spelling) + spelling_text_.capacity() +
           spelling_slots_.ids.capacity() * 4 + spelling_runs_.capacity() * sizeof(SpellingRun);
  bytes += folders_.capacity() * sizeof(Folder) + folded_text_.capacity() + folder_slots_.ids.capacity() * 4 +
           direct_stretches_.capacity() * sizeof(Stretch);
  for (const Run& run : runs_) bytes += sizeof(Run) + run.check.capacity() * 4 + run.key.capacity();
  return bytes;
}

// ---- lookups -----------------------------------------------------------------

std::size_t RemoteListing::RunFor(std::wstring_view folder) const {
  std::size_t slash = folder.find(L'\\');
  std::wstring_view head = folder;
  if (slash != folder.npos) head = folder.substr(0, machine_mode() ? slash : slash + 1);
  auto found = run_by_name_.find(FoldedUtf8(head));
  return found == run_by_name_.end() ? kNoRun : found->second;
}

const ListingNode* RemoteListing::NodeFor(std::wstring_view folder) const {
  const std::size_t run = RunFor(folder);
  return run == kNoRun ? nullptr : runs_[run].node;
}

bool RemoteListing::LineContains(std::uint32_t position, EnumCursor& cursor) const {
  EntryUtf8(static_cast<std::int32_t>(position), cursor.line);
  return FoldedFind(cursor.line, cursor.query) != std::string_view::npos;
}

void RemoteListing::CollectSubtree(std::uint32_t folder, std::vector<std::uint32_t>& out) const {
  std::vector<std::uint32_t> stack{folder};
  while (!stack.empty()) {
    const Folder& f = folders_[stack.back()];
    stack.pop_back();
    for (std::uint32_t k = f.direct_begin; k < f.direct_end; ++k)
      for (std::uint32_t p = direct_stretches_[k].begin; p < direct_stretches_[k].end; ++p) out.push_back(p);
    for (std::uint32_t c = f.first_child; c != kNone; c = folders_[c].next_sibling) stack.push_back(c);
  }
}

void RemoteListing::PlanIndexed(const Run& run, EnumCursor& cursor) const {
  const auto first = static_cast<std::uint32_t>(run.node->first_entry_);
  const auto last = static_cast<std::uint32_t>(run.node->last_entry_);
  const std::string& q = cursor.query;
  const std::size_t split = q.rfind('\\') + 1;
  const std::string_view folder_key = std::string_view(q).substr(0, split);
  const std::string_view tail = std::string_view(q).substr(split);
  cursor.kind = EnumCursor::Kind::kIndexed;
  cursor.check = run.check.data();
  cursor.check_end = run.check.data() + run.check.size();
  cursor.next = 1;
  cursor.last = 0;  // empty interval
  cursor.sure_is_list = false;

  const std::uint32_t found = FindFolder(folder_key);
  if (found == kNone) return;
  const Folder& folder = folders_[found];
  auto contiguous = [](const Folder& f) { return f.count > 0 && f.max - f.min + 1 == f.count; };
  if (tail.empty() && (folder.count == 0 || contiguous(folder))) {
    cursor.next = std::max(folder.min, first);
    cursor.last = std::min(folder.max, last);
    return;
  }
  std::vector<std::uint32_t>& list = cursor.sure_list;
  if (tail.empty()) {
    CollectSubtree(found, list);
  } else {
    for (std::uint32_t k = folder.direct_begin; k < folder.direct_end; ++k) {
      for (std::uint32_t p = direct_stretches_[k].begin; p < direct_stretches_[k].end; ++p)
        if (FoldedStartsWith(NameOf(p), 0, tail)) list.push_back(p);
    }
    for (std::uint32_t c = folder.first_child; c != kNone; c = folders_[c].next_sibling) {
      if (FolderName(folders_[c]).substr(0, tail.size()) == tail) CollectSubtree(c, list);
    }
  }
  std::sort(list.begin(), list.end());
  list.erase(std::remove_if(list.begin(), list.end(),
                            [&](std::uint32_t p) { return p < first || p > last; }),
             list.end());
  cursor.sure_is_list = true;
}

namespace {

// A fresh cursor that keeps its buffers, so that a walk of many folders does
// not allocate for each.
void Restart(EnumCursor& cursor) {
  EnumCursor fresh;
  fresh.sure_list.swap(cursor.sure_list);
  fresh.spelling_path.swap(cursor.spelling_path);
  fresh.name_head.swap(cursor.name_head);
  fresh.line.swap(cursor.line);
  fresh.folder.swap(cursor.folder);
  fresh.query.swap(cursor.query);
  fresh.sure_list.clear();
  fresh.spelling_path.clear();
  cursor = std::move(fresh);
}

}  // namespace

bool RemoteListing::Plan(std::wstring_view folder, EnumCursor& cursor) const {
  Restart(cursor);
  const std::size_t run_index = finished_ ? RunFor(folder) : kNoRun;
  if (run_index == kNoRun) return false;
  const Run& run = runs_[run_index];
  const ListingNode* node = run.node;
  cursor.node = node;
  cursor.folder.assign(folder);
  AssignFoldedUtf8(cursor.query, folder);
  const std::string& q = cursor.query;
  if (run.has_key && q.find('/') == std::string::npos && q.compare(0, run.key.size(), run.key) == 0) {
    PlanIndexed(run, cursor);
  } else if (run.has_key && run.check.empty() && run.key.compare(0, q.size(), q) == 0) {
    // The folder path is a prefix of the node's own name: every line matches.
    cursor.kind = EnumCursor::Kind::kIndexed;
    cursor.next = static_cast<std::uint32_t>(node->first_entry_);
    cursor.last = static_cast<std::uint32_t>(node->last_entry_);
  } else {
    cursor.kind = EnumCursor::Kind::kScan;
    cursor.next = static_cast<std::uint32_t>(node->first_entry_);
    cursor.last = static_cast<std::uint32_t>(node->last_entry_);
  }
  return true;
}

std::int32_t RemoteListing::FindFirst(std::wstring_view folder, EnumCursor& cursor,
                                      FindData& data) const {
  if (!Plan(folder, cursor)) {
    SetEmptyValues(data);
    return -1;
  }
  return Advance(cursor, data);
}

std::int32_t RemoteListing::FindNext(EnumCursor& cursor, FindData& data) const {
  return Advance(cursor, data);
}

std::int32_t RemoteListing::Continue(EnumCursor& cursor, FindData& data) const {
  const bool walking = cursor.kind != EnumCursor::Kind::kNone;
  const std::wstring folder = std::move(cursor.folder);
  const std::uint32_t last_found = cursor.last_found;
  if (!walking || !Plan(folder, cursor)) {
    cursor = EnumCursor{};
    SetEmptyValues(data);
    return -1;
  }
  SkipBelow(cursor, last_found + 1);
  return Advance(cursor, data);
}

void RemoteListing::SkipBelow(EnumCursor& cursor, std::uint32_t from) {
  cursor.next = std::max(cursor.next, from);
  if (cursor.sure_is_list) {
    const auto& list = cursor.sure_list;
    cursor.sure_index = static_cast<std::size_t>(std::lower_bound(list.begin(), list.end(), from) - list.begin());
  }
  if (cursor.check != cursor.check_end) cursor.check = std::lower_bound(cursor.check, cursor.check_end, from);
}

std::int32_t RemoteListing::Advance(EnumCursor& cursor, FindData& data) const {
  std::uint32_t found = 0;
  bool at_start = false;
  if (cursor.kind == EnumCursor::Kind::kScan) {
    while (cursor.next <= cursor.last) {
      std::uint32_t position = cursor.next++;
      if (LineContains(position, cursor)) {
        found = position;
        break;
      }
    }
  } else if (cursor.kind == EnumCursor::Kind::kIndexed) {
    while (true) {
      std::uint32_t sure = UINT32_MAX;
      if (cursor.sure_is_list) {
        if (cursor.sure_index < cursor.sure_list.size()) sure = cursor.sure_list[cursor.sure_index];
      } else if (cursor.next <= cursor.last) {
        sure = cursor.next;
      }
      std::uint32_t candidate = cursor.check != cursor.check_end ? *cursor.check : UINT32_MAX;
      if (sure == UINT32_MAX && candidate == UINT32_MAX) break;
      if (sure <= candidate) {
        if (candidate == sure) ++cursor.check;
        if (cursor.sure_is_list) {
          ++cursor.sure_index;
        } else {
          ++cursor.next;
        }
        found = sure;
        at_start = true;  // every sure match begins with the folder path
        break;
      }
      ++cursor.check;
      if (LineContains(candidate, cursor)) {
        found = candidate;
        break;
      }
    }
  }
  if (found == 0) {
    cursor.kind = EnumCursor::Kind::kNone;
    SetEmptyValues(data);
    return -1;
  }
  cursor.last_found = found;
  Fill(found, cursor, at_start, data);
  return static_cast<std::int32_t>(found);
}

}  // namespace tavrine::browsing
