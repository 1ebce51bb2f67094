#include "browsing/linear_scan.h"

#include <array>
#include <string_view>
#include <utility>

#include "browsing/case_fold.h"
#include "foundation/text_file.h"

namespace tavrine::browsing {

namespace {

// The scan folds case by its own statement of the rules, not the index's
// table, so that comparing the two can catch a fault in either. Letters whose
// lower case has another UTF-8 length (U+0130, U+023A, U+023E, U+1E9E) stay.
constexpr char32_t kPlainFoldEnd = 0x2000;

constexpr std::array<char16_t, kPlainFoldEnd> BuildPlainFold() {
  std::array<char16_t, kPlainFoldEnd> lower{};
  for (char32_t c = 0; c < kPlainFoldEnd; ++c) lower[c] = static_cast<char16_t>(c);
  constexpr std::string_view kCapitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view kSmall = "abcdefghijklmnopqrstuvwxyz";
  for (std::size_t k = 0; k < kCapitals.size(); ++k) lower[static_cast<unsigned char>(kCapitals[k])] = kSmall[k];
  const auto shift = [&](char32_t first, char32_t last, char32_t every, int by) {
    for (char32_t c = first; c <= last; c += every) lower[c] = static_cast<char16_t>(static_cast<int>(c) + by);
  };
  shift(0xC0, 0xD6, 1, 0x20);  // Latin-1, without the multiplication sign
  shift(0xD8, 0xDE, 1, 0x20);
  shift(0x100, 0x12E, 2, 1);  // Latin Extended-A: capital, small
  shift(0x132, 0x136, 2, 1);
  shift(0x139, 0x147, 2, 1);
  shift(0x14A, 0x176, 2, 1);
  shift(0x179, 0x17D, 2, 1);
  lower[0x178] = 0xFF;
  // Latin Extended-B: the regular pairs, then the letters whose small form lies elsewhere.
  shift(0x182, 0x184, 2, 1);
  shift(0x1A0, 0x1A4, 2, 1);
  shift(0x1B3, 0x1B5, 2, 1);
  shift(0x1CB, 0x1DB, 2, 1);
  shift(0x1DE, 0x1EE, 2, 1);
  shift(0x1F2, 0x1F4, 2, 1);
  shift(0x1F8, 0x21E, 2, 1);
  shift(0x222, 0x232, 2, 1);
  shift(0x246, 0x24E, 2, 1);
  constexpr std::pair<char16_t, char16_t> kPairs[] = {
      {0x181, 0x253}, {0x186, 0x254}, {0x187, 0x188}, {0x189, 0x256}, {0x18A, 0x257}, {0x18B, 0x18C},
      {0x18E, 0x1DD}, {0x18F, 0x259}, {0x190, 0x25B}, {0x191, 0x192}, {0x193, 0x260}, {0x194, 0x263},
      {0x196, 0x269}, {0x197, 0x268}, {0x198, 0x199}, {0x19C, 0x26F}, {0x19D, 0x272}, {0x19F, 0x275},
      {0x1A6, 0x280}, {0x1A7, 0x1A8}, {0x1A9, 0x283}, {0x1AC, 0x1AD}, {0x1AE, 0x288}, {0x1AF, 0x1B0},
      {0x1B1, 0x28A}, {0x1B2, 0x28B}, {0x1B7, 0x292}, {0x1B8, 0x1B9}, {0x1BC, 0x1BD}, {0x1C4, 0x1C6},
      {0x1C5, 0x1C6}, {0x1C7, 0x1C9}, {0x1C8, 0x1C9}, {0x1CA, 0x1CC}, {0x1F1, 0x1F3}, {0x1F6, 0x195},
      {0x1F7, 0x1BF}, {0x220, 0x19E}, {0x23B, 0x23C}, {0x23D, 0x19A}, {0x241, 0x242}, {0x243, 0x180},
      {0x244, 0x289}, {0x245, 0x28C},
  };
  for (const auto& [capital, small] : kPairs) lower[capital] = small;
  shift(0x391, 0x3A1, 1, 0x20);  // Greek (U+03A2 is no letter)
  shift(0x3A3, 0x3A9, 1, 0x20);
  shift(0x400, 0x40F, 1, 0x50);  // Cyrillic
  shift(0x410, 0x42F, 1, 0x20);
  shift(0x1E00, 0x1E94, 2, 1);  // Latin Extended Additional
  shift(0x1EA0, 0x1EFE, 2, 1);
  return lower;
}

constexpr std::array<char16_t, kPlainFoldEnd> kPlainFold = BuildPlainFold();

}  // namespace

char32_t PlainFoldCase(char32_t c) { return c < kPlainFoldEnd ? kPlainFold[c] : c; }

std::wstring FoldedWide(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&](char32_t c) { AppendWide(out, PlainFoldCase(c)); });
  return out;
}

LinearScanListing LinearScanListing::From(const RemoteListing& listing) {
  LinearScanListing scan;
  scan.machine_mode_ = listing.machine_mode();
  for (std::int32_t i = 1; i <= listing.count(); ++i) scan.entries_.push_back(listing.Entry(i));
  for (const ListingNode* node = listing.root().first_child_; node; node = node->next_sibling_)
    scan.nodes_.push_back(Node{node->name_, node->first_entry_, node->last_entry_});
  return scan;
}

bool LinearScanListing::LoadFile(const std::wstring& path, const std::wstring& machine) {
  auto lines = foundation::ReadUtf16Lines(path);
  if (!lines) return false;
  machine_mode_ = machine_mode_ || !machine.empty();
  bool first = true, marked = false;
  std::wstring name = nodes_.empty() ? L"" : nodes_.back().name;
  for (std::wstring& line : *lines) {
    std::size_t b = line.find_first_not_of(L" \t");
    std::size_t e = line.find_last_not_of(L" \t");
    if (b == std::wstring::npos || e - b + 1 < 3) break;
    if (first) {
      first = false;
      std::size_t last = line.rfind(L'/');
      if (last != std::wstring::npos) {
        std::size_t before = last == 0 ? std::wstring::npos : line.rfind(L'/', last - 1);
        marked = last - (before == std::wstring::npos ? 0 : before + 1) < 2;
      }
    }
    if (marked && line.size() >= 3 && line[line.size() - 3] == L'1')
      line = line.substr(0, line.size() >= 4 ? line.size() - 4 : 0) + line.substr(line.size() - 2);
    std::wstring line_name = name;
    if (!machine.empty()) {
      line_name = machine;
    } else if (std::size_t slash = line.find(L'\\'); slash != std::wstring::npos) {
      line_name = UpperCaseText(std::wstring_view(line).substr(0, slash + 1));
    }
    if (nodes_.empty() || line_name != name) {
      name = line_name;
      nodes_.push_back(Node{name, static_cast<std::int32_t>(entries_.size()) + 1, 0});
    }
    entries_.push_back(machine.empty() ? std::move(line) : machine + L"\\" + line);
    nodes_.back().last = static_cast<std::int32_t>(entries_.size());
  }
  return true;
}

std::int32_t LinearScanListing::FindFirst(std::wstring_view folder, FindData& data) {
  node_ = nullptr;
  std::size_t slash = folder.find(L'\\');
  std::wstring_view head = folder;
  if (slash != folder.npos) head = folder.substr(0, machine_mode_ ? slash : slash + 1);
  const std::wstring wanted = FoldedWide(head);
  for (const Node& node : nodes_) {
    if (FoldedWide(node.name) == wanted) {
      node_ = &node;
      break;
    }
  }
  if (!node_) {
    SetEmptyValues(data);
    return -1;
  }
  query_ = FoldedWide(folder);
  next_ = node_->first;
  return Scan(data);
}

std::int32_t LinearScanListing::FindNext(FindData& data) {
  if (!node_) {
    SetEmptyValues(data);
    return -1;
  }
  return Scan(data);
}

std::int32_t LinearScanListing::Scan(FindData& data) {
  for (; next_ <= node_->last; ++next_) {
    const std::wstring& line = entries_[static_cast<std::size_t>(next_) - 1];
    std::size_t at = FoldedWide(line).find(query_);
    if (at == std::wstring::npos) continue;
    FillFromLine(line, at + query_.size(), data);
    return next_++;
  }
  node_ = nullptr;
  SetEmptyValues(data);
  return -1;
}

}  // namespace tavrine::browsing
