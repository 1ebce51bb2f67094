#include "platform/file_mapping.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "platform/path.h"

namespace tavrine::platform {

bool FileMapping::Open(const std::wstring& path) {
  Reset();
  const int fd = ::open(ToFsPath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat info {};
  void* view = MAP_FAILED;
  if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 &&
      static_cast<std::uintmax_t>(info.st_size) <= SIZE_MAX) {
    int flags = MAP_PRIVATE;
#ifdef MAP_POPULATE
    flags |= MAP_POPULATE;  // one call maps every page instead of a fault each
#endif
    view = ::mmap(nullptr, static_cast<std::size_t>(info.st_size), PROT_READ, flags, fd, 0);
  }
  ::close(fd);  // the mapping keeps the file
  if (view == MAP_FAILED) return false;
  view_ = view;
  size_ = static_cast<std::size_t>(info.st_size);
  return true;
}

void FileMapping::Reset() {
  if (view_ != nullptr) ::munmap(const_cast<void*>(view_), size_);
  view_ = nullptr;
  size_ = 0;
}

}  // namespace tavrine::platform
