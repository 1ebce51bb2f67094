#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrine::refengine {

// One run of the engine, as one line of engine-journal.txt.
struct JournalRecord {
  std::string code;    // the command code in decimal; empty when not understood
  std::string answer;  // index into the code's queue, or "-" when none was used
  std::string program, folder, cwd, params, note;  // UTF-8 text
  // Request files of the exchange folder at start; nullopt when absent.
  std::vector<std::pair<std::string, std::optional<std::string>>> files;
};

std::string FormatJournalLine(const JournalRecord& record);

// How many runs of `code` the journal text holds already.
std::size_t CountRuns(std::string_view journal, std::string_view code);

}  // namespace tavrine::refengine
