#include "platform/module_folder.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::platform {

namespace {

std::filesystem::path ModuleFile() {
  Dl_info info{};
  // The file that holds this code: the shared library when the core is in one.
  if (dladdr(reinterpret_cast<void*>(&ModuleFile), &info) != 0 && info.dli_fname != nullptr) {
    std::filesystem::path file(info.dli_fname);
    // For the main program the loader reports argv[0], which may be relative.
    if (file.is_absolute()) return file;
  }
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

std::wstring ModuleFolder() {
  const std::optional<std::wstring>& folder = Current().module_folder;
  if (folder) return *folder;
  return FromFsPath(ModuleFile().parent_path());
}

}  // namespace tavrine::platform
