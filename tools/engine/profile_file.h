#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrine::refengine {

// The library's POSIX profile store file ("[key path]" lines, then "name=data"
// lines; names, data and paths UTF-8 with line breakers, '%', '=', '[', ']',
// '#' and ';' as %XX). Returns the file with the values of `key_path` set,
// every other line kept as it was. Keys and names match without regard to ASCII case.
std::string SetProfileFileValues(std::string_view file_bytes, const std::string& key_path,
                                 const std::vector<std::pair<std::string, std::string>>& values);

}  // namespace tavrine::refengine
