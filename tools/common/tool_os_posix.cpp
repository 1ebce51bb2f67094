#include <signal.h>
#include <unistd.h>

#include <system_error>

#include "tool_os.h"

namespace tavrine::reftools {

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

std::string ParameterTextFromArguments(int argc, char** argv) {
  std::string parameters;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) parameters += ' ';
    parameters += argv[i];
  }
  return parameters;
}

}  // namespace tavrine::reftools
