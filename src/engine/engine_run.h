#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/process.h"

namespace tavrine::engine {

// Command codes of the engine.
inline constexpr int kCodeUpdateRandom = 5;
inline constexpr int kCodeDelete = 6;
inline constexpr int kCodeEncryptionStatus = 110;
inline constexpr int kCodeCompleteSession = 111;
inline constexpr int kCodeVersions = 113;
inline constexpr int kCodeQuota = 114;
inline constexpr int kCodeListing = 115;
inline constexpr int kCodeLogin = 116;
inline constexpr int kCodeResolveEmail = 117;
inline constexpr int kCodeMachineList = 119;
inline constexpr int kCodeBrowseInit = 122;
inline constexpr int kCodeRestore = 123;

// " <code><<folder>>": one leading space, the folder unquoted between angle brackets.
std::wstring EngineParameters(int code, const std::wstring& folder);

// <module folder><sep><program file>
std::wstring EngineProgramPath(const std::wstring& program_file);
// The client program of the configuration (ExeGroup + "ClsClient.exe") and the fixed one.
std::wstring ConfiguredEngineProgram();
std::wstring FixedEngineProgram();

// Starts the engine hidden in the library's folder; null when it cannot be
// started (a trace line says so).
std::unique_ptr<platform::RunningProcess> StartEngine(const std::wstring& program, int code,
                                                      const std::wstring& folder);

enum class RunEnd { kExited, kCancelled, kTimedOut, kNotStarted };

// Waits in 300 ms slices until the engine ends, bounded by the configured
// engine time-out (the engine is then terminated).
RunEnd WaitPlain(platform::RunningProcess* process);

// Waits in 300 ms slices with a pause of `pause_ms` after each; WaitPumping
// lets window messages run before each pause. Bounded like WaitPlain.
RunEnd WaitPausing(platform::RunningProcess* process, std::uint32_t pause_ms);
RunEnd WaitPumping(platform::RunningProcess* process, std::uint32_t pause_ms);

// Waits in 1000 ms slices; after each slice lets window messages run and, when
// `cancel_marker` exists, terminates the engine. Bounded like WaitPlain.
RunEnd WaitCancellable(platform::RunningProcess* process, const std::wstring& cancel_marker);

// Starts and waits (plain) in one step.
RunEnd RunEngine(const std::wstring& program, int code, const std::wstring& folder);

}  // namespace tavrine::engine
