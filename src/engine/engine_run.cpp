#include "engine/engine_run.h"

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/trace_log.h"
#include "platform/module_folder.h"
#include "platform/services.h"

namespace tavrine::engine {

namespace {

constexpr std::uint32_t kPlainSliceMs = 300;
constexpr std::uint32_t kCancellableSliceMs = 1000;

std::uint64_t DeadlineFromNow() {
  std::uint64_t limit_ms =
      static_cast<std::uint64_t>(foundation::LoadedConfiguration().engine_timeout_seconds) * 1000;
  return platform::CurrentClock().SteadyMs() + limit_ms;
}

RunEnd EndAfterTimeout(platform::RunningProcess* process) {
  process->Terminate(0);
  foundation::Trace(L"Engine run exceeded " +
                    std::to_wstring(foundation::LoadedConfiguration().engine_timeout_seconds) +
                    L" s and was terminated");
  return RunEnd::kTimedOut;
}

template <typename BetweenSlices>
RunEnd WaitInSlices(platform::RunningProcess* process, std::uint32_t slice_ms,
                    BetweenSlices between_slices) {
  if (!process) return RunEnd::kNotStarted;
  const std::uint64_t deadline = DeadlineFromNow();
  for (;;) {
    platform::WaitOutcome outcome = process->Wait(slice_ms);
    if (outcome == platform::WaitOutcome::kExited) return RunEnd::kExited;
    if (outcome == platform::WaitOutcome::kFailed) {
      foundation::Trace(L"Waiting for the engine failed");
      return RunEnd::kExited;
    }
    if (between_slices()) {
      process->Terminate(0);
      return RunEnd::kCancelled;
    }
    if (platform::CurrentClock().SteadyMs() >= deadline) return EndAfterTimeout(process);
  }
}

}  // namespace

std::wstring EngineParameters(int code, const std::wstring& folder) {
  return L" " + std::to_wstring(code) + L"<" + folder + L">";
}

std::wstring EngineProgramPath(const std::wstring& program_file) {
  return foundation::JoinPath(platform::ModuleFolder(), program_file);
}

std::wstring ConfiguredEngineProgram() {
  return EngineProgramPath(foundation::LoadedConfiguration().client_program_name);
}

std::wstring FixedEngineProgram() { return EngineProgramPath(L"TavrinEClient.exe"); }

std::unique_ptr<platform::RunningProcess> StartEngine(const std::wstring& program, int code,
                                                      const std::wstring& folder) {
  std::wstring parameters = EngineParameters(code, folder);
  // An empty program name leaves the application folder itself; the shell
  // would open it in a browser window that never ends instead of failing.
  if (foundation::FolderExists(program)) {
    foundation::Trace(L"Engine could not be started: no program file at " + program);
    return nullptr;
  }
  auto process =
      platform::CurrentLauncher().Start(program, parameters, platform::ModuleFolder());
  if (!process) foundation::Trace(L"Engine could not be started: " + program + parameters);
  return process;
}

RunEnd WaitPlain(platform::RunningProcess* process) {
  return WaitInSlices(process, kPlainSliceMs, [] { return false; });
}

RunEnd WaitPausing(platform::RunningProcess* process, std::uint32_t pause_ms) {
  return WaitInSlices(process, kPlainSliceMs, [pause_ms] {
    platform::CurrentClock().Sleep(pause_ms);
    return false;
  });
}

RunEnd WaitPumping(platform::RunningProcess* process, std::uint32_t pause_ms) {
  return WaitInSlices(process, kPlainSliceMs, [pause_ms] {
    platform::CurrentUi().PumpMessages();
    platform::CurrentClock().Sleep(pause_ms);
    return false;
  });
}

RunEnd WaitCancellable(platform::RunningProcess* process, const std::wstring& cancel_marker) {
  return WaitInSlices(process, kCancellableSliceMs, [&cancel_marker] {
    platform::CurrentUi().PumpMessages();
    return foundation::FileExists(cancel_marker);
  });
}

RunEnd RunEngine(const std::wstring& program, int code, const std::wstring& folder) {
  auto process = StartEngine(program, code, folder);
  return WaitPlain(process.get());
}

}  // namespace tavrine::engine
