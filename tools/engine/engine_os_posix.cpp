#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "engine_os.h"
#include "profile_file.h"
#include "vault_text.h"

namespace tavrine::refengine {

bool RenameReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool WriteProfileValues(const std::filesystem::path& work_root, const std::string& installation,
                        const std::string& user,
                        const std::vector<std::pair<std::string, std::string>>& values) {
  const std::filesystem::path file = work_root / "HKEY_CURRENT_USER.ini";
  const std::string bytes = SetProfileFileValues(
      ReadWholeFile(file).value_or(""), "Software\\Brennick\\" + installation + "\\" + user, values);
  // Mode 0600 like the library's own writes: the store holds protected values.
  const std::filesystem::path temp = TempSibling(file);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  std::string_view rest(bytes);
  bool ok = true;
  while (ok && !rest.empty()) {
    ssize_t written = ::write(fd, rest.data(), rest.size());
    ok = written > 0;
    if (ok) rest.remove_prefix(static_cast<std::size_t>(written));
  }
  ok = ::close(fd) == 0 && ok;
  ok = ok && RenameReplacing(temp, file);
  if (!ok) ::unlink(temp.c_str());
  return ok;
}

}  // namespace tavrine::refengine

int main(int argc, char** argv) {
  return tavrine::refengine::RunEngine(tavrine::reftools::ParameterTextFromArguments(argc, argv));
}
