#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "browsing/entry_record.h"
#include "browsing/records.h"

namespace tavrine::browsing {

// A node of the remote entry tree: the root ("\") or a first-level node (a
// drive, or a computer when the account has several) owning a contiguous run
// of entry positions.
class ListingNode {
 public:
  ListingNode() = default;
  ListingNode(const ListingNode&) = delete;
  ListingNode& operator=(const ListingNode&) = delete;

  // Makes a node, appends it to the end of the first-level chain and counts it.
  ListingNode* AppendChild(const std::wstring& name);

  std::wstring name_;
  ListingNode* first_child_ = nullptr;
  ListingNode* next_sibling_ = nullptr;
  ListingNode* parent_ = nullptr;
  std::int32_t child_count_ = 0;
  std::int32_t first_entry_ = 0;
  std::int32_t last_entry_ = 0;
  std::wstring base_path_;

 private:
  ListingNode* last_child_ = nullptr;
  std::vector<std::unique_ptr<ListingNode>> owned_;
};

// Where an enumeration stands. Matches come from a stream known to match
// (an interval or a sorted list of positions) merged with a sorted list of
// candidates that are checked one by one; a scan checks every line of the run.
struct EnumCursor {
  enum class Kind { kNone, kIndexed, kScan };
  Kind kind = Kind::kNone;
  std::wstring folder;  // as asked
  std::string query;    // case-folded folder path
  std::uint32_t last_found = 0;
  const ListingNode* node = nullptr;
  // kIndexed: sure matches, interval [next, last] or list.
  bool sure_is_list = false;
  std::uint32_t next = 0;
  std::uint32_t last = 0;
  std::vector<std::uint32_t> sure_list;
  std::size_t sure_index = 0;
  // Checked candidates (kIndexed) — a view into the listing's per-run list.
  const std::uint32_t* check = nullptr;
  const std::uint32_t* check_end = nullptr;
  // Lines of one folder come together: the folder last met, its path and the
  // part of that path a record's name follows, already wide.
  std::uint32_t spelling_run = UINT32_MAX;
  std::uint32_t spelling = UINT32_MAX;
  std::string spelling_path;
  std::wstring name_head;
  std::string line;  // a whole line, rebuilt for the checks
};

// The entry array of one load (every accepted listing line, one-based, in
// file order), the tree over it, and an index answering the folder lookups
// exactly as a scan of the node's run would. A line is kept as its folder
// (one copy of each folder's name), its own name (generalized UTF-8) and its
// fields, packed into a 16-byte record where they have the usual shape.
class RemoteListing {
 public:
  RemoteListing();
  RemoteListing(const RemoteListing&) = delete;
  RemoteListing& operator=(const RemoteListing&) = delete;

  // While a file loads, pending window messages run after every this many lines.
  static constexpr std::size_t kLinesPerMessagePump = 4096;

  // Loading. machine is "" for a single-machine account.
  void BeginFile(const std::wstring& machine);
  // One line without its line end; false once the file's list has ended.
  bool AddLine(std::u16string_view line);
  // How AddFile reads: mapped (read in pieces where it cannot be mapped), or
  // in pieces.
  enum class FileRead { kMapped, kPieces };
  // Reads a UTF-16LE file (BOM optional; CR, LF or CRLF end a line). False
  // when it cannot be read.
  bool AddFile(const std::wstring& path, const std::wstring& machine, FileRead read = FileRead::kMapped);
  // Builds the index; lookups need it.
  void Finish();

  std::int32_t count() const { return static_cast<std::int32_t>(records_.size()); }
  // The line as it was loaded (after the rewriting of the marked form).
  std::wstring Entry(std::int32_t position) const;
  void EntryUtf8(std::int32_t position, std::string& out) const;
  bool machine_mode() const { return machine_mode_; }
  ListingNode& root() { return root_; }
  const ListingNode& root() const { return root_; }
  // The first-level node the lookups use for a folder path, or null.
  const ListingNode* NodeFor(std::wstring_view folder) const;

  // Fill `data` from the next match and return its position, or the empty
  // values and -1.
  std::int32_t FindFirst(std::wstring_view folder, EnumCursor& cursor, FindData& data) const;
  std::int32_t FindNext(EnumCursor& cursor, FindData& data) const;
  // Find-next for a cursor of another (dropped or replaced) load: the folder's
  // run on this load, from the position after the last match. Only the
  // cursor's values are read, never its references into the other load.
  std::int32_t Continue(EnumCursor& cursor, FindData& data) const;

  // Bytes held by the listing (names, records and index).
  std::size_t MemoryBytes() const;
  // Bytes of the names (and of the fields kept as text).
  std::size_t NameBytes() const { return names_.size(); }

 private:
  struct Run {
    ListingNode* node = nullptr;
    std::string key;  // folded first-level text up to and including the first backslash
    std::u16string key16;  // the same in UTF-16, as lines are read
    bool has_key = false;
    std::vector<std::uint32_t> check;  // lines that a prefix index cannot vouch for
  };
  static constexpr std::uint32_t kNone = UINT32_MAX;
  // A folder path as written: its last name and the folder above. Lines that
  // name one folder in different cases have different spellings.
  struct Spelling {
    std::uint32_t parent = kNone;
    std::uint32_t text = 0;  // in spelling_text_
    std::uint32_t size = 0;
    std::uint32_t folder = kNone;  // the case-folded folder
  };
  // Positions [begin, next run's begin) whose lines are in one spelling.
  struct SpellingRun {
    std::uint32_t begin = 0;
    std::uint32_t spelling = kNone;
  };
  // A folder whatever its case: its parent and its folded last name.
  struct Folder {
    std::uint32_t folded = 0;  // the folded name in folded_text_
    std::uint32_t size = 0;
    std::uint32_t hash = 0;    // of the parent and the folded last name
    std::uint32_t parent = kNone;
    std::uint32_t first_child = kNone;
    std::uint32_t next_sibling = kNone;
    std::uint32_t direct_begin = 0;  // its stretches in direct_stretches_
    std::uint32_t direct_end = 0;
    std::uint32_t min = UINT32_MAX;
    std::uint32_t max = 0;
    std::uint32_t count = 0;
  };
  // Consecutive positions [begin, end) of lines directly in one folder. Lines
  // of a folder come together, so this is far smaller than a position each.
  struct Stretch {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };
  // Open addressing over ids (kNone when free), at most half full.
  struct Slots {
    std::vector<std::uint32_t> ids;
    std::size_t used = 0;
  };

  static constexpr std::size_t kNoRun = SIZE_MAX;
  std::size_t RunFor(std::wstring_view folder) const;
  bool StartsNewNode(std::u16string_view line);
  void StoreEntry(std::u16string_view line, std::size_t known);
  static constexpr std::size_t kSampleLines = 4096;
  void ReserveForFile(std::size_t file_units, std::size_t units_per_line, std::size_t names_per_line);
  static bool NeedsCheck(const Run& run, std::u16string_view line);
  std::uint32_t SpellingOf(std::u16string_view prefix);
  std::string_view Utf8Of(std::u16string_view text);
  std::uint32_t InternSpelling(std::uint32_t parent, std::string_view name);
  std::uint32_t InternFolder(std::uint32_t parent, std::string_view folded);
  std::string_view SpellingName(std::uint32_t spelling) const;
  // Folded: compared with folded text byte for byte.
  std::string_view FolderName(const Folder& folder) const {
    return std::string_view(folded_text_).substr(folder.folded, folder.size);
  }
  // The folder whose folded path is `folded` (ending with a backslash), or kNone.
  std::uint32_t FindFolder(std::string_view folded) const;
  std::uint32_t FindChildFolder(std::uint32_t parent, std::string_view folded, std::uint32_t hash) const;
  void AppendSpellingPath(std::uint32_t spelling, std::string& out) const;
  std::uint32_t SpellingRunOf(std::uint32_t position, std::uint32_t hint) const;
  std::string_view RecordBytes(std::uint32_t position) const;
  std::string_view NameOf(std::uint32_t position) const;
  // Sets the cursor before the folder's first match; false when no node has it.
  bool Plan(std::wstring_view folder, EnumCursor& cursor) const;
  void PlanIndexed(const Run& run, EnumCursor& cursor) const;
  static void SkipBelow(EnumCursor& cursor, std::uint32_t from);
  void CollectSubtree(std::uint32_t folder, std::vector<std::uint32_t>& out) const;
  std::int32_t Advance(EnumCursor& cursor, FindData& data) const;
  bool LineContains(std::uint32_t position, EnumCursor& cursor) const;
  void Fill(std::uint32_t position, EnumCursor& cursor, bool at_start, FindData& data) const;
  void FillFromPacked(std::uint32_t position, EnumCursor& cursor, FindData& data) const;

  ListingNode root_;
  // The entries.
  std::vector<EntryRecord> records_;  // [position - 1]
  std::string names_;                 // each record's name (and fields kept as text), in file order
  ModeTable modes_;
  std::vector<Spelling> spellings_;
  std::string spelling_text_;
  Slots spelling_slots_;
  std::vector<SpellingRun> spelling_runs_;  // in file order
  // Loading state.
  std::wstring machine_;
  std::u16string machine16_;  // the machine name and a backslash, put before each line
  bool machine_mode_ = false;
  bool first_line_of_file_ = true;
  bool marked_form_ = false;
  bool file_ended_ = false;
  bool overflowed_ = false;
  std::u16string previous_head_;
  std::wstring previous_name_;
  ListingNode* current_node_ = nullptr;
  std::vector<Run> runs_;
  std::u16string rewritten_;
  std::u16string line16_;  // a line with its machine name
  std::string utf8_;       // scratch, only grows
  std::u16string previous_prefix_;  // the folder part of the last line, and its spelling
  std::uint32_t previous_spelling_ = kNone;
  bool prefix_needs_check_ = true;  // the check the folder part alone calls for
  std::vector<std::uint32_t> prefix_chain_;  // spelling of each folder along previous_prefix_
  std::string folded_scratch_;
  // Index.
  std::unordered_map<std::string, std::size_t> run_by_name_;
  Slots folder_slots_;
  std::vector<Folder> folders_;
  std::string folded_text_;
  std::vector<Stretch> direct_stretches_;  // grouped by folder, in file order
  bool finished_ = false;
};

// Filling a record from one listing line the way the lookups do, on wide text
// (the plain scan and the version history use it).
void FillFromLine(std::wstring_view line, std::size_t name_begin, FindData& data);

// The whole number a field starts with (blanks, a sign, digits) in [low, high];
// 0 when it starts with none. Read as an integer, so 64-bit sizes stay exact.
std::int64_t LeadingFieldInteger(std::wstring_view field, std::int64_t low, std::int64_t high);

}  // namespace tavrine::browsing
