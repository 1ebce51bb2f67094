#pragma once
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool_text.h"

// Text handling of the reference compare program; internally UTF-8.
namespace tavrine::refcompare {

using reftools::AsciiLower;
using reftools::FormatDate;
using reftools::HexBytes;
using reftools::SplitLines;
using reftools::Trim;

// "<folder><mode>": the folder between the first '<' and the '>' before the
// last "<...>"; a text with one bracket pair only has an empty mode.
struct Invocation {
  std::string folder;
  std::string mode;
};
std::optional<Invocation> ParseParameters(std::string_view text);

// A file's text: UTF-16LE when it starts with FF FE, else UTF-8 (a UTF-8 BOM dropped).
std::string DecodeTextFile(std::string_view bytes);
// UTF-16LE with BOM and CR LF after each line.
std::string EncodeUtf16Lines(const std::vector<std::string>& lines);

// One remote entry of Backupfile.txt: "path/versions/size/MM-DD-YYYY HH:MM:SS[/flag]/mode".
struct RemoteEntry {
  long long size = -1;
  std::string date;
};
// Entries keyed by AsciiLower(path); the list ends at a line shorter than 3
// characters after trimming; lines with too few fields are skipped.
std::map<std::string, RemoteEntry> ParseListing(std::string_view text);

// The remote form of a local path: every '/' turned into '\'.
std::string RemoteForm(std::string local);
// '%', tab, CR, LF and other control bytes as %XX.
std::string EscapeField(std::string_view text);

}  // namespace tavrine::refcompare
