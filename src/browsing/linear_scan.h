#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "browsing/records.h"
#include "browsing/remote_tree.h"

namespace tavrine::browsing {

// The folder lookups done the plain way, one wide string per entry and a scan
// of the node's run on every call. It is the yardstick the index is checked
// and measured against.
class LinearScanListing {
 public:
  // The same entries and runs as an indexed listing.
  static LinearScanListing From(const RemoteListing& listing);
  // Loads a listing file the plain way (whole lines as wide strings).
  bool LoadFile(const std::wstring& path, const std::wstring& machine);

  std::int32_t FindFirst(std::wstring_view folder, FindData& data);
  std::int32_t FindNext(FindData& data);
  std::size_t size() const { return entries_.size(); }
  const std::wstring& entry(std::size_t position) const { return entries_[position - 1]; }

 private:
  struct Node {
    std::wstring name;
    std::int32_t first = 0;
    std::int32_t last = 0;
  };
  std::int32_t Scan(FindData& data);

  std::vector<std::wstring> entries_;
  std::vector<Node> nodes_;
  bool machine_mode_ = false;
  const Node* node_ = nullptr;
  std::wstring query_;
  std::int32_t next_ = 0;
};

// Case folding as the scan does it, stated apart from the index's table.
char32_t PlainFoldCase(char32_t c);
std::wstring FoldedWide(std::wstring_view text);

}  // namespace tavrine::browsing
