#include <signal.h>
#include <unistd.h>

#include <system_error>

#include "engine_os.h"

namespace tavrine::refengine {

std::filesystem::path ProgramPath() {
  std::error_code ec;
  return std::filesystem::read_symlink("/proc/self/exe", ec);
}

std::filesystem::path PathFromUtf8(const std::string& utf8) { return std::filesystem::path(utf8); }

std::string Utf8FromPath(const std::filesystem::path& path) { return path.string(); }

void ExitAbnormally() {
  // SIGKILL leaves no core file in the install folder, unlike abort().
  kill(getpid(), SIGKILL);
  _exit(3);
}

}  // namespace tavrine::refengine

int main(int argc, char** argv) {
  // The library hands the parameter text over as one argument; join any split
  // pieces back with single spaces.
  std::string parameters;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) parameters += ' ';
    parameters += argv[i];
  }
  return tavrine::refengine::RunEngine(parameters);
}
