#pragma once
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavrine::fuzz {

// A private folder per fuzzing process. It is also the library's module
// folder on the fuzzing thread, so configuration reads and the trace log stay
// inside it. Each call to Begin() counts one input; the trace log is dropped
// now and then so a long run does not fill the disk.
const std::filesystem::path& Folder();
std::wstring WideFolder();
void Begin();

// Replaces <Folder()>/<name> with exactly these bytes (sub-folders made).
void WriteFile(const std::filesystem::path& name, std::string_view bytes);
std::wstring WidePath(const std::filesystem::path& name);

// Splits the input at "\n--\n" into at most `max_parts` parts (the last one
// keeps the rest); lets one input carry several files.
std::vector<std::string_view> SplitParts(std::string_view data, std::size_t max_parts);

// Bytes taken as UTF-16LE code units (an odd last byte is dropped), the way
// the library's wide strings hold outside text.
std::wstring BytesAsUtf16(std::string_view bytes);

inline std::string_view AsView(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace tavrine::fuzz
