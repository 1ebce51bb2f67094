#pragma once
#include <optional>
#include <string>

namespace tavrine::engine {

// What the engine left in an exchange folder: DLLOutput.txt (an answer) or
// else DLLOutputInfo.txt (a failure with its description).
struct ResultFile {
  bool answered = false;                   // DLLOutput.txt had a line
  std::optional<double> value;             // the result code, when one was readable
  std::optional<std::wstring> description;  // DLLOutputInfo.txt's second line
};

// Reads the result files of `folder` (none when it is empty: nothing is read
// from the host's current directory). Without a result code it writes one
// trace line, so a crashed or silent engine leaves a mark in the log.
ResultFile ReadResultFile(const std::wstring& folder);

// Whether either result file is there yet (a failure answer is one too).
bool ResultFilePresent(const std::wstring& folder);

// Removes the request and result files of `folder` (nothing when it is empty).
void DeleteExchangeFiles(const std::wstring& folder);

}  // namespace tavrine::engine
