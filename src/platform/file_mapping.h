#pragma once
#include <cstddef>
#include <string>

namespace tavrine::platform {

// A whole file mapped read-only into memory, unmapped when its owner goes.
// Reading a large file this way copies nothing: the pages are the cache's own.
class FileMapping {
 public:
  FileMapping() = default;
  ~FileMapping() { Reset(); }
  FileMapping(const FileMapping&) = delete;
  FileMapping& operator=(const FileMapping&) = delete;

  // False when the file cannot be mapped (missing, empty, too large for the
  // address space, or a file system without mappings): read it instead.
  bool Open(const std::wstring& path);
  const unsigned char* data() const { return static_cast<const unsigned char*>(view_); }
  std::size_t size() const { return size_; }

 private:
  void Reset();
  const void* view_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace tavrine::platform
