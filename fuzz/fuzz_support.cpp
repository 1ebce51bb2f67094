#include "fuzz_support.h"

#include <stdlib.h>

#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::fuzz {

namespace {

constexpr unsigned kLogDropInterval = 4096;

struct FuzzFolder {
  FuzzFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavrine-fuzz-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) abort();
    path = pattern;
    platform::Services seams;
    seams.module_folder = platform::FromFsPath(path);
    services.emplace(seams);
    // Configuration.ini keeps the work root and log inside the folder.
    std::ofstream(path / "Configuration.ini", std::ios::binary)
        << "[ProductInfo]\r\nProductNumber=7\r\nProductName=TavrinE\r\n"
           "ProductInstallationName=TavrinEFuzz\r\nExeGroup=TavrinE\r\n";
  }
  ~FuzzFolder() {
    services.reset();
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::filesystem::path path;
  std::optional<platform::ScopedServices> services;
  unsigned inputs = 0;
};

FuzzFolder& TheFolder() {
  static FuzzFolder folder;
  return folder;
}

}  // namespace

const std::filesystem::path& Folder() { return TheFolder().path; }

std::wstring WideFolder() { return platform::FromFsPath(Folder()); }

void Begin() {
  FuzzFolder& folder = TheFolder();
  if (++folder.inputs % kLogDropInterval == 0) {
    std::error_code ignored;
    std::filesystem::remove_all(folder.path / "Log", ignored);
  }
}

void WriteFile(const std::filesystem::path& name, std::string_view bytes) {
  std::filesystem::path file = Folder() / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::wstring WidePath(const std::filesystem::path& name) {
  return platform::FromFsPath(Folder() / name);
}

std::vector<std::string_view> SplitParts(std::string_view data, std::size_t max_parts) {
  constexpr std::string_view kMark = "\n--\n";
  std::vector<std::string_view> parts;
  while (parts.size() + 1 < max_parts) {
    std::size_t at = data.find(kMark);
    if (at == std::string_view::npos) break;
    parts.push_back(data.substr(0, at));
    data.remove_prefix(at + kMark.size());
  }
  parts.push_back(data);
  return parts;
}

std::wstring BytesAsUtf16(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                        (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  }
  return text;
}

}  // namespace tavrine::fuzz
