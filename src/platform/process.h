#pragma once
#include <cstdint>
#include <memory>
#include <string>

namespace tavrine::platform {

enum class WaitOutcome { kExited, kStillRunning, kFailed };

// A started program. Destroying it closes the handle; it never kills the program.
class RunningProcess {
 public:
  virtual ~RunningProcess() = default;
  virtual WaitOutcome Wait(std::uint32_t timeout_ms) = 0;
  virtual bool Terminate(std::uint32_t exit_code) = 0;
  // Gives the native handle (Windows HANDLE, POSIX pid) to the caller, who now owns it.
  virtual std::intptr_t Release() = 0;
};

class ProcessLauncher {
 public:
  virtual ~ProcessLauncher() = default;
  // Starts `program` hidden with the parameter text as its command-line tail.
  // Null when the program could not be started.
  virtual std::unique_ptr<RunningProcess> Start(const std::wstring& program,
                                                const std::wstring& parameters,
                                                const std::wstring& working_folder) = 0;
};

ProcessLauncher& SystemProcessLauncher();

// Takes back ownership of a handle that Release() gave away (an engine whose
// handle an operation returned), so that its caller can wait for it.
std::unique_ptr<RunningProcess> AdoptProcess(std::intptr_t native_handle);

// True when a process whose executable file name is `exe_name` (case-insensitive) runs.
bool IsProcessRunning(const std::wstring& exe_name);

}  // namespace tavrine::platform
