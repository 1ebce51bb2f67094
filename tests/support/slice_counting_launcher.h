#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/process.h"

namespace tavrine::testing {

// Starts programs through the system launcher and counts, per start, the
// waits that found the program still running: the pauses a wait makes
// between its slices can then be told from the pauses of the code around it.
class SliceCountingLauncher : public platform::ProcessLauncher {
 public:
  std::unique_ptr<platform::RunningProcess> Start(const std::wstring& program,
                                                  const std::wstring& parameters,
                                                  const std::wstring& working_folder) override;
  // Of the start number `start` (from 0).
  int RunningSlices(std::size_t start) const { return running_.at(start); }
  std::size_t starts() const { return running_.size(); }

  void CountRunning(std::size_t start) { ++running_.at(start); }

 private:
  std::vector<int> running_;
};

}  // namespace tavrine::testing
