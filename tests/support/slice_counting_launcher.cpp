#include "support/slice_counting_launcher.h"

namespace tavrine::testing {

namespace {

class CountedProcess : public platform::RunningProcess {
 public:
  CountedProcess(std::unique_ptr<platform::RunningProcess> inner, SliceCountingLauncher& launcher,
                 std::size_t start)
      : inner_(std::move(inner)), launcher_(launcher), start_(start) {}
  platform::WaitOutcome Wait(std::uint32_t timeout_ms) override {
    platform::WaitOutcome outcome = inner_->Wait(timeout_ms);
    if (outcome == platform::WaitOutcome::kStillRunning) launcher_.CountRunning(start_);
    return outcome;
  }
  bool Terminate(std::uint32_t exit_code) override { return inner_->Terminate(exit_code); }
  std::intptr_t Release() override { return inner_->Release(); }

 private:
  std::unique_ptr<platform::RunningProcess> inner_;
  SliceCountingLauncher& launcher_;
  std::size_t start_;
};

}  // namespace

std::unique_ptr<platform::RunningProcess> SliceCountingLauncher::Start(
    const std::wstring& program, const std::wstring& parameters, const std::wstring& working_folder) {
  auto inner = platform::SystemProcessLauncher().Start(program, parameters, working_folder);
  if (!inner) return nullptr;
  running_.push_back(0);
  return std::make_unique<CountedProcess>(std::move(inner), *this, running_.size() - 1);
}

}  // namespace tavrine::testing
