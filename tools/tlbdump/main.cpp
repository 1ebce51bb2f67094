// tlbdump <dll or tlb> [output file]: prints the listing of a type library.
#include <windows.h>

#include <cstdio>
#include <string>

#include "tlbdump/tlb_dump.h"

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) {
    std::fputs("usage: tlbdump <dll or tlb> [output file]\n", stderr);
    return 2;
  }
  std::string listing = tavrine::tlbdump::DumpTypeLibraryFile(argv[1]);
  // Binary mode so the listing keeps "\n" line ends and diffs with the golden file.
  FILE* out = argc > 2 ? _wfopen(argv[2], L"wb") : stdout;
  if (!out) return 1;
  if (out == stdout) std::fflush(stdout);
  std::fwrite(listing.data(), 1, listing.size(), out);
  if (out != stdout) std::fclose(out);
  return listing.rfind("LoadTypeLibEx failed", 0) == 0 ? 1 : 0;
}
