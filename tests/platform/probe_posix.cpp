#include <unistd.h>

#include <climits>

#include "probe_common.h"

using namespace tavrine::testing;

int main(int argc, char** argv) {
  // Exactly one argument: the launcher must not split the parameter text.
  if (argc != 2) return 2;
  probe::Request request;
  if (!probe::Parse(argv[1], request)) return 3;
  probe::SleepFor(request.ms);
  char cwd[PATH_MAX] = {};
  if (!getcwd(cwd, sizeof cwd)) return 4;
  std::ofstream out(request.folder + "/probe.txt", std::ios::binary);
  probe::WriteReport(out, argv[1], cwd);
  return out ? 0 : 5;
}
