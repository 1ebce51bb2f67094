#include "browsing/linear_scan.h"

#include "browsing/case_fold.h"
#include "foundation/text_file.h"

namespace tavrine::browsing {

std::wstring FoldedWide(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&](char32_t c) { AppendWide(out, FoldCase(c)); });
  return out;
}

LinearScanListing LinearScanListing::From(const RemoteListing& listing) {
  LinearScanListing scan;
  scan.machine_mode_ = listing.machine_mode();
  for (std::int32_t i = 1; i <= listing.count(); ++i) scan.entries_.push_back(listing.Entry(i));
  for (const clsTavrinETree* node = listing.root().first_child_; node; node = node->next_sibling_)
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
  const std::wstring wanted = UpperCaseText(head);
  for (const Node& node : nodes_) {
    if (UpperCaseText(node.name) == wanted) {
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
