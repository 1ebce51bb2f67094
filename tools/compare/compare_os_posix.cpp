#include <signal.h>
#include <unistd.h>

#include <system_error>

#include "compare_os.h"

namespace tavrine::refcompare {

std::filesystem::path ProgramPath() {
  std::error_code ec;
  return std::filesystem::read_symlink("/proc/self/exe", ec);
}

std::filesystem::path PathFromUtf8(const std::string& utf8) { return std::filesystem::path(utf8); }

std::string Utf8FromPath(const std::filesystem::path& path) { return path.string(); }

void ExitAbnormally() {
  kill(getpid(), SIGKILL);
  _exit(3);
}

}  // namespace tavrine::refcompare

int main(int argc, char** argv) {
  // The library passes the parameter text as one argument; rejoin split pieces.
  std::string parameters;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) parameters += ' ';
    parameters += argv[i];
  }
  return tavrine::refcompare::RunCompareProgram(parameters);
}
