#include "support/temp_folder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <system_error>

#include "platform/path.h"
#include "tool_text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace tavrine::testing {

namespace {

// Unique across the test programs running at once, and within one.
std::string UniqueName() {
  static const unsigned program = std::random_device()();
  static std::atomic<unsigned> counter{0};
  auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
  std::ostringstream name;
  name << "tavrine-test-" << program << "-" << ticks << "-" << counter++;
  return name.str();
}

}  // namespace

TempFolder::TempFolder() {
  path_ = std::filesystem::temp_directory_path() / UniqueName();
  std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(path_, ignored);
}

std::wstring TempFolder::wpath() const { return platform::FromFsPath(path_); }

std::filesystem::path TestProgramFolder() {
#ifdef _WIN32
  wchar_t buffer[MAX_PATH * 4] = {};
  DWORD length = GetModuleFileNameW(nullptr, buffer, static_cast<DWORD>(std::size(buffer)));
  return std::filesystem::path(std::wstring(buffer, length)).parent_path();
#else
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
#endif
}

std::string ReadFileBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFileBytes(const std::filesystem::path& file, const std::string& bytes) {
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::wstring RemoteForm(const std::filesystem::path& local) {
  std::wstring text = platform::FromFsPath(local);
  std::replace(text.begin(), text.end(), L'/', L'\\');
  return text;
}

std::string Utf16LeFile(const std::wstring& text) {
  std::string bytes = "\xFF\xFE";
  for (wchar_t c : text) reftools::AppendUtf16Le(bytes, static_cast<char32_t>(c));
  return bytes;
}

std::wstring Utf16LeText(std::string_view bytes) {
  if (bytes.substr(0, 2) == "\xFF\xFE") bytes.remove_prefix(2);
  std::wstring text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                 (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return text;
}

}  // namespace tavrine::testing
