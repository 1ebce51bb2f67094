// Listing load, folder lookups and full walks at 10k/100k/1M entries, each
// beside the plain linear scan.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "browsing/linear_scan.h"
#include "browsing/remote_tree.h"
#include "listing_generator.h"
#include "platform/path.h"

namespace tavrine::bench {
namespace {

using browsing::EnumCursor;
using browsing::FindData;
using browsing::LinearScanListing;
using browsing::RemoteListing;

struct Fixture {
  GeneratedListing generated;
  std::wstring file;
  std::shared_ptr<RemoteListing> listing;
};

std::wstring WriteListing(const GeneratedListing& g, std::size_t n) {
  auto path = std::filesystem::temp_directory_path() / ("tavrine_bench_" + std::to_string(n) + ".txt");
  std::string bytes = "\xFF\xFE";
  bytes.reserve(g.text.size() * 2 + 2);
  for (wchar_t c : g.text) {
    bytes += static_cast<char>(c & 0xFF);
    bytes += static_cast<char>((c >> 8) & 0xFF);
  }
  std::ofstream(path, std::ios::binary) << bytes;
  return platform::FromFsPath(path);
}

Fixture& Get(std::size_t n) {
  static std::map<std::size_t, Fixture> cache;
  auto found = cache.find(n);
  if (found != cache.end()) return found->second;
  Fixture& f = cache[n];
  f.generated = GenerateListing(n);
  f.file = WriteListing(f.generated, n);
  f.listing = std::make_shared<RemoteListing>();
  f.listing->AddFile(f.file, L"");
  f.listing->Finish();
  return f;
}

#if defined(__GLIBC__)
// Freed memory stays with the process, as it does in a host that has run for a
// while: the timed loads then measure the loader, not the first touch of fresh
// pages, which on some virtual machines costs over 10 us a page.
// BM_LoadFreshMemory keeps that cost in, for comparison.
[[maybe_unused]] const bool kHeapKept = [] {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  return true;
}();
#endif

// Hands freed heap pages back first, so that a load cannot hide in memory an
// earlier benchmark left resident and the delta counts what the load touches.
void ReleaseFreeHeap() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

std::size_t ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t pages = 0, resident = 0;
  statm >> pages >> resident;
  return resident * 4096;
}

void BM_Load(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    RemoteListing listing;
    listing.AddFile(f.file, L"");
    listing.Finish();
    benchmark::DoNotOptimize(listing.count());
  }
  state.counters["entries"] = static_cast<double>(f.listing->count());
  const RemoteListing& l = *f.listing;
  state.counters["index_bytes_per_entry"] = static_cast<double>(l.MemoryBytes()) / l.count();
  const char* text_end = l.EntryBytes(l.count()).data() + l.EntryBytes(l.count()).size();
  state.counters["text_bytes_per_entry"] = static_cast<double>(text_end - l.EntryBytes(1).data()) / l.count();
}

void BM_LoadFreshMemory(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    ReleaseFreeHeap();
    state.ResumeTiming();
    RemoteListing listing;
    listing.AddFile(f.file, L"");
    listing.Finish();
    benchmark::DoNotOptimize(listing.count());
  }
}

void BM_LoadLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    LinearScanListing scan;
    scan.LoadFile(f.file, L"");
    benchmark::DoNotOptimize(scan.size());
  }
}

// Resident memory of a fresh load, per entry.
void BM_ResidentPerEntry(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  double per_entry = 0;
  for (auto _ : state) {
    ReleaseFreeHeap();
    std::size_t before = ResidentBytes();
    auto listing = std::make_unique<RemoteListing>();
    listing->AddFile(f.file, L"");
    listing->Finish();
    per_entry = static_cast<double>(ResidentBytes() - before) / listing->count();
    // What stays once the heap gives back what loading freed on the way.
    ReleaseFreeHeap();
    state.counters["kept_bytes_per_entry"] = static_cast<double>(ResidentBytes() - before) / listing->count();
  }
  state.counters["resident_bytes_per_entry"] = per_entry;
}

const std::vector<std::wstring>& Folders(Fixture& f) { return f.generated.folders; }

void BM_FindFirst(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  const auto& folders = Folders(f);
  std::size_t k = 0;
  EnumCursor cursor;
  FindData data;
  std::vector<double> samples;
  for (auto _ : state) {
    auto t0 = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(f.listing->FindFirst(folders[k++ % folders.size()], cursor, data));
    samples.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
  }
  std::sort(samples.begin(), samples.end());
  state.counters["p99_us"] = samples[samples.size() * 99 / 100];
}

void BM_FindFirstLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  LinearScanListing scan = LinearScanListing::From(*f.listing);
  const auto& folders = Folders(f);
  std::size_t k = folders.size() / 2;
  FindData data;
  for (auto _ : state) benchmark::DoNotOptimize(scan.FindFirst(folders[k++ % folders.size()], data));
}

// Per entry: every entry of the drive root C:\ in turn.
void BM_NextFile(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  EnumCursor cursor;
  FindData data;
  f.listing->FindFirst(L"C:\\", cursor, data);
  for (auto _ : state) {
    if (f.listing->FindNext(cursor, data) == -1) f.listing->FindFirst(L"C:\\", cursor, data);
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_NextFileLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  LinearScanListing scan = LinearScanListing::From(*f.listing);
  FindData data;
  scan.FindFirst(L"C:\\", data);
  for (auto _ : state) {
    if (scan.FindNext(data) == -1) scan.FindFirst(L"C:\\", data);
  }
  state.SetItemsProcessed(state.iterations());
}

// Every folder, every entry found in it, as the shell walks the tree.
template <class Find, class Next>
std::size_t WalkAll(const std::vector<std::wstring>& folders, Find&& find, Next&& next) {
  std::size_t seen = 0;
  FindData data;
  for (const std::wstring& folder : folders)
    for (auto p = find(folder, data); p != -1; p = next(data)) ++seen;
  return seen;
}

void BM_FullWalk(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  EnumCursor cursor;
  std::size_t seen = 0;
  for (auto _ : state) {
    seen = WalkAll(Folders(f), [&](const std::wstring& q, FindData& d) { return f.listing->FindFirst(q, cursor, d); },
                   [&](FindData& d) { return f.listing->FindNext(cursor, d); });
  }
  state.counters["records"] = static_cast<double>(seen);
}

void BM_FullWalkLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  LinearScanListing scan = LinearScanListing::From(*f.listing);
  for (auto _ : state) {
    benchmark::DoNotOptimize(WalkAll(Folders(f), [&](const std::wstring& q, FindData& d) { return scan.FindFirst(q, d); },
                                     [&](FindData& d) { return scan.FindNext(d); }));
  }
}

BENCHMARK(BM_Load)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(2000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFreshMemory)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ResidentPerEntry)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindFirst)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FindFirstLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_NextFile)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_NextFileLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_FullWalk)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(2000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullWalkLinear)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavrine::bench

BENCHMARK_MAIN();
