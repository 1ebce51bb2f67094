#include "tool_files.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace tavrine::reftools {

namespace fs = std::filesystem;

std::optional<std::string> ReadWholeFile(const fs::path& file) {
  std::error_code ec;
  if (!fs::is_regular_file(file, ec)) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteWholeFile(const fs::path& file, const std::string& bytes, bool append) {
  std::ofstream out(file, std::ios::binary | (append ? std::ios::app : std::ios::trunc));
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace tavrine::reftools
