#include "platform/file_mapping.h"

#include <windows.h>

#include <cstdint>

#include "platform/win32/unique_owners.h"

namespace tavrine::platform {

bool FileMapping::Open(const std::wstring& path) {
  Reset();
  // Others may read, write or delete the file as with a plain read; a mapped
  // file cannot be cut short while the view exists.
  win32::UniqueFileHandle file(
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file) return false;
  LARGE_INTEGER size{};
  if (!GetFileSizeEx(file.get(), &size) || size.QuadPart <= 0 ||
      static_cast<std::uint64_t>(size.QuadPart) > SIZE_MAX)
    return false;
  win32::UniqueHandle mapping(CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
  if (!mapping) return false;
  const void* view = MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0);  // keeps the mapping open
  if (view == nullptr) return false;
  view_ = view;
  size_ = static_cast<std::size_t>(size.QuadPart);
  return true;
}

void FileMapping::Reset() {
  if (view_ != nullptr) UnmapViewOfFile(view_);
  view_ = nullptr;
  size_ = 0;
}

}  // namespace tavrine::platform
