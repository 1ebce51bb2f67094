// Backupfile.txt, single- and several-computer forms: the indexed lookups must
// answer exactly as the plain scan over the same entries does.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "browsing/linear_scan.h"
#include "browsing/remote_tree.h"
#include "fuzz_support.h"

namespace {

using tavrine::browsing::EnumCursor;
using tavrine::browsing::FindData;
using tavrine::browsing::LinearScanListing;
using tavrine::browsing::RemoteListing;

constexpr std::size_t kMaxWalk = 2000;

struct Found {
  std::int32_t position;
  std::wstring name;
  std::int64_t size;
  std::int16_t version;
  std::uint32_t low, high;
  std::wstring mode;
  bool operator==(const Found&) const = default;
};

Found Record(std::int32_t position, const FindData& data) {
  return {position, data.cFilename, data.nFileSize, data.nVersion,
          data.ftLastWriteTime.dwLowDateTime, data.ftLastWriteTime.dwHighDateTime, data.strUnimode};
}

std::vector<Found> Walk(const RemoteListing& listing, const std::wstring& folder) {
  std::vector<Found> out;
  EnumCursor cursor;
  FindData data;
  for (std::int32_t p = listing.FindFirst(folder, cursor, data); p != -1 && out.size() < kMaxWalk;
       p = listing.FindNext(cursor, data))
    out.push_back(Record(p, data));
  return out;
}

std::vector<Found> Walk(LinearScanListing& scan, const std::wstring& folder) {
  std::vector<Found> out;
  FindData data;
  for (std::int32_t p = scan.FindFirst(folder, data); p != -1 && out.size() < kMaxWalk;
       p = scan.FindNext(data))
    out.push_back(Record(p, data));
  return out;
}

// Folders worth asking for: the root, each entry's folders (every prefix up
// to a backslash) for the first entries, and a first-level name without one.
std::vector<std::wstring> Queries(const RemoteListing& listing) {
  std::vector<std::wstring> queries = {L"\\", L""};
  for (std::int32_t p = 1; p <= listing.count() && p <= 6; ++p) {
    std::wstring entry = listing.Entry(p);
    entry = entry.substr(0, entry.find(L'/'));
    for (std::size_t at = entry.find(L'\\'); at != std::wstring::npos;
         at = entry.find(L'\\', at + 1))
      queries.push_back(entry.substr(0, at + 1));
    queries.push_back(entry.substr(0, entry.find(L'\\')));
  }
  return queries;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  std::string_view input = tavrine::fuzz::AsView(data, size);
  // The first byte picks the form: 0 one computer, otherwise that many (up to 3).
  std::size_t machines = input.empty() ? 0 : static_cast<unsigned char>(input[0]) % 4;
  if (!input.empty()) input.remove_prefix(1);
  auto parts = tavrine::fuzz::SplitParts(input, machines == 0 ? 1 : machines);

  RemoteListing listing;
  for (std::size_t k = 0; k < parts.size(); ++k) {
    std::wstring machine = machines == 0 ? L"" : L"PC" + std::to_wstring(k);
    std::string file = "listing" + std::to_string(k) + "/Backupfile.txt";
    tavrine::fuzz::WriteFile(file, parts[k]);
    listing.AddFile(tavrine::fuzz::WidePath(file), machine);
  }
  listing.Finish();

  LinearScanListing scan = LinearScanListing::From(listing);
  for (const std::wstring& folder : Queries(listing)) {
    if (Walk(listing, folder) != Walk(scan, folder)) std::abort();
  }
  return 0;
}
