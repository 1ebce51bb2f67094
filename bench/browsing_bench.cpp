// Listing load, folder lookups and full walks at 10k/100k/1M/2M entries, each
// beside the plain linear scan, and a closing table of the medians with their
// ratios to the linear scan of the same run.
//
//   browsing_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// TAVRINE_BENCH_10M=1 adds the load and the walk of 10M entries (about 2 GB
// of listing file in the temp folder, several GB of memory).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

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
  std::vector<std::wstring> folders;
  std::wstring file;
  std::shared_ptr<RemoteListing> listing;
};

// The listing goes straight to a UTF-16LE file, so that 10M entries need no
// copy of their text in memory.
std::wstring WriteListing(std::size_t n, std::vector<std::wstring>& folders) {
  auto path = std::filesystem::temp_directory_path() / ("tavrine_bench_" + std::to_string(n) + ".txt");
  std::ofstream out(path, std::ios::binary);
  std::string bytes = "\xFF\xFE";
  folders = GenerateLines(n, 7, [&](const std::wstring& line) {
    for (wchar_t c : line) {
      bytes += static_cast<char>(c & 0xFF);
      bytes += static_cast<char>((c >> 8) & 0xFF);
    }
    bytes += std::string("\r\0\n\0", 4);
    if (bytes.size() > (1 << 20)) {
      out << bytes;
      bytes.clear();
    }
  });
  out << bytes;
  return platform::FromFsPath(path);
}

Fixture& Get(std::size_t n) {
  static std::map<std::size_t, Fixture> cache;
  auto found = cache.find(n);
  if (found != cache.end()) return found->second;
  Fixture& f = cache[n];
  f.file = WriteListing(n, f.folders);
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

// Resident bytes of the process: the second field of /proc/self/statm, in pages.
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
  const RemoteListing& l = *f.listing;
  state.counters["entries"] = static_cast<double>(l.count());
  state.counters["index_bytes_per_entry"] = static_cast<double>(l.MemoryBytes()) / l.count();
  state.counters["name_bytes_per_entry"] = static_cast<double>(l.NameBytes()) / l.count();
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

// Resident memory a fresh load adds, per entry: the delta of /proc/self/statm
// around the load (resident_bytes_per_entry), and what stays once the heap
// has given back what loading freed on the way (kept_bytes_per_entry).
template <class Load>
void MeasureResident(benchmark::State& state, Load&& load) {
  double per_entry = 0, kept = 0;
  for (auto _ : state) {
    ReleaseFreeHeap();
    const std::size_t before = ResidentBytes();
    auto loaded = load();
    const double entries = static_cast<double>(loaded->size_for_bench());
    per_entry = static_cast<double>(ResidentBytes() - before) / entries;
    ReleaseFreeHeap();
    kept = static_cast<double>(ResidentBytes() - before) / entries;
  }
  state.counters["resident_bytes_per_entry"] = per_entry;
  state.counters["kept_bytes_per_entry"] = kept;
}

struct LoadedIndex {
  RemoteListing listing;
  std::size_t size_for_bench() const { return static_cast<std::size_t>(listing.count()); }
};
struct LoadedScan {
  LinearScanListing scan;
  std::size_t size_for_bench() const { return scan.size(); }
};

void BM_ResidentPerEntry(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  MeasureResident(state, [&] {
    auto loaded = std::make_unique<LoadedIndex>();
    loaded->listing.AddFile(f.file, L"");
    loaded->listing.Finish();
    return loaded;
  });
}

void BM_ResidentPerEntryLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  MeasureResident(state, [&] {
    auto loaded = std::make_unique<LoadedScan>();
    loaded->scan.LoadFile(f.file, L"");
    return loaded;
  });
}

void BM_FindFirst(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  const auto& folders = f.folders;
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
  const auto& folders = f.folders;
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
    seen = WalkAll(f.folders, [&](const std::wstring& q, FindData& d) { return f.listing->FindFirst(q, cursor, d); },
                   [&](FindData& d) { return f.listing->FindNext(cursor, d); });
  }
  state.counters["records"] = static_cast<double>(seen);
}

void BM_FullWalkLinear(benchmark::State& state) {
  Fixture& f = Get(static_cast<std::size_t>(state.range(0)));
  LinearScanListing scan = LinearScanListing::From(*f.listing);
  for (auto _ : state) {
    benchmark::DoNotOptimize(WalkAll(f.folders, [&](const std::wstring& q, FindData& d) { return scan.FindFirst(q, d); },
                                     [&](FindData& d) { return scan.FindNext(d); }));
  }
}

BENCHMARK(BM_Load)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(2000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFreshMemory)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ResidentPerEntry)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ResidentPerEntryLinear)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindFirst)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FindFirstLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_NextFile)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_NextFileLinear)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_FullWalk)->Arg(10000)->Arg(100000)->Arg(1000000)->Arg(2000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullWalkLinear)->Arg(10000)->Unit(benchmark::kMillisecond);

void Register10M() {
  constexpr std::int64_t kTenMillion = 10000000;
  benchmark::RegisterBenchmark("BM_LoadFreshMemory", BM_LoadFreshMemory)->Arg(kTenMillion)->Iterations(1)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("BM_ResidentPerEntry", BM_ResidentPerEntry)->Arg(kTenMillion)->Iterations(1)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("BM_NextFile", BM_NextFile)->Arg(kTenMillion)->Unit(benchmark::kNanosecond);
  benchmark::RegisterBenchmark("BM_FullWalk", BM_FullWalk)->Arg(kTenMillion)->Iterations(1)->Unit(benchmark::kMillisecond);
}

// The medians (or the single runs) of the figures the closing table shows,
// keyed "BM_Name/arg" and "BM_Name/arg:counter"; times in nanoseconds.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (!median && run.run_type != Run::RT_Iteration) continue;
      if (!median && run.repetitions > 1) continue;
      const std::string name = run.run_name.str();
      values_[name] = run.GetAdjustedRealTime() * NanosecondsPer(run.time_unit);
      for (const auto& [counter, value] : run.counters) values_[name + ":" + counter] = value.value;
    }
  }

  void PrintSummary() const {
    std::printf("\nMedians; ratio = index / linear scan of this run\n");
    std::printf("%-44s %14s %14s %8s\n", "figure", "index", "linear scan", "ratio");
    Row("resident bytes/entry after load, 1M", "BM_ResidentPerEntry/1000000/iterations:1:resident_bytes_per_entry",
        "BM_ResidentPerEntryLinear/1000000/iterations:1:resident_bytes_per_entry", 1);
    Row("kept bytes/entry after trim, 1M", "BM_ResidentPerEntry/1000000/iterations:1:kept_bytes_per_entry",
        "BM_ResidentPerEntryLinear/1000000/iterations:1:kept_bytes_per_entry", 1);
    Row("load ms, 1M, fresh memory (linear: load)", "BM_LoadFreshMemory/1000000", "BM_LoadLinear/1000000", 1e-6);
    Row("load ms, 1M, heap kept", "BM_Load/1000000", "BM_LoadLinear/1000000", 1e-6);
    Row("next-file ns/entry, 1M", "BM_NextFile/1000000", "BM_NextFileLinear/1000000", 1);
    Row("find-first p99 us, 1M (linear: mean)", "BM_FindFirst/1000000:p99_us", "BM_FindFirstLinear/1000000", 1, 1e-3);
    Row("find-first mean us, 1M", "BM_FindFirst/1000000", "BM_FindFirstLinear/1000000", 1e-3);
    Row("full walk ms, 10k", "BM_FullWalk/10000", "BM_FullWalkLinear/10000", 1e-6);
    Row("full walk ms, 1M (no linear: quadratic)", "BM_FullWalk/1000000", "", 1e-6);
    Row("full walk ms, 2M", "BM_FullWalk/2000000", "", 1e-6);
    Ratio("full walk 2M / 1M", "BM_FullWalk/2000000", "BM_FullWalk/1000000");
    Row("load ms, 10M, fresh memory", "BM_LoadFreshMemory/10000000/iterations:1", "", 1e-6);
    Row("resident bytes/entry, 10M", "BM_ResidentPerEntry/10000000/iterations:1:resident_bytes_per_entry", "", 1);
    Row("next-file ns/entry, 10M", "BM_NextFile/10000000", "", 1);
    Row("full walk ms, 10M", "BM_FullWalk/10000000/iterations:1", "", 1e-6);
    Ratio("full walk 10M / 1M", "BM_FullWalk/10000000/iterations:1", "BM_FullWalk/1000000");
  }

 private:
  static double NanosecondsPer(benchmark::TimeUnit unit) {
    switch (unit) {
      case benchmark::kNanosecond: return 1;
      case benchmark::kMicrosecond: return 1e3;
      case benchmark::kMillisecond: return 1e6;
      case benchmark::kSecond: return 1e9;
    }
    return 1;
  }
  const double* Find(const std::string& key) const {
    auto found = values_.find(key);
    return found == values_.end() ? nullptr : &found->second;
  }
  void Row(const char* what, const std::string& index, const std::string& linear, double scale,
           double linear_scale = 0) const {
    const double* a = Find(index);
    if (!a) return;
    const double* b = linear.empty() ? nullptr : Find(linear);
    if (linear_scale == 0) linear_scale = scale;
    if (b) {
      std::printf("%-44s %14.2f %14.2f %8.3f\n", what, *a * scale, *b * linear_scale, (*a * scale) / (*b * linear_scale));
    } else {
      std::printf("%-44s %14.2f %14s %8s\n", what, *a * scale, "-", "-");
    }
  }
  void Ratio(const char* what, const std::string& a, const std::string& b) const {
    const double* x = Find(a);
    const double* y = Find(b);
    if (x && y) std::printf("%-44s %14.3f\n", what, *x / *y);
  }
  std::map<std::string, double> values_;
};

}  // namespace
}  // namespace tavrine::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  if (const char* ten = std::getenv("TAVRINE_BENCH_10M"); ten && std::string(ten) == "1")
    tavrine::bench::Register10M();
  tavrine::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintSummary();
  benchmark::Shutdown();
  return 0;
}
