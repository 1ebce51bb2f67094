#include "platform/process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

#include "platform/path.h"

extern char** environ;

namespace tavrine::platform {

namespace {

class SpawnActions {
 public:
  SpawnActions() { ok_ = posix_spawn_file_actions_init(&actions_) == 0; }
  ~SpawnActions() {
    if (ok_) posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;

  bool ok() const { return ok_; }
  posix_spawn_file_actions_t* get() { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
  bool ok_ = false;
};

class PosixProcess : public RunningProcess {
 public:
  explicit PosixProcess(pid_t pid) : pid_(pid) {}

  ~PosixProcess() override {
    // Reap it if it has ended; a program still running is left alone.
    if (pid_ > 0 && !reaped_) Reap(WNOHANG);
  }

  PosixProcess(const PosixProcess&) = delete;
  PosixProcess& operator=(const PosixProcess&) = delete;

  WaitOutcome Wait(std::uint32_t timeout_ms) override {
    if (pid_ <= 0) return WaitOutcome::kFailed;
    if (reaped_) return WaitOutcome::kExited;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    auto step = std::chrono::milliseconds(1);
    while (true) {
      pid_t result = Reap(WNOHANG);
      if (result == pid_) return WaitOutcome::kExited;
      if (result < 0) return WaitOutcome::kFailed;
      auto now = std::chrono::steady_clock::now();
      if (now >= deadline) return WaitOutcome::kStillRunning;
      std::this_thread::sleep_for(
          std::min<std::chrono::steady_clock::duration>(step, deadline - now));
      step = std::min(step * 2, std::chrono::milliseconds(20));
    }
  }

  bool Terminate(std::uint32_t) override {
    if (pid_ <= 0 || reaped_) return false;
    if (kill(pid_, SIGKILL) != 0) return false;
    Reap(0);
    return true;
  }

  std::intptr_t Release() override {
    pid_t pid = pid_;
    pid_ = -1;
    return reaped_ ? -1 : static_cast<std::intptr_t>(pid);
  }

 private:
  pid_t Reap(int options) {
    while (true) {
      int status = 0;
      pid_t result = waitpid(pid_, &status, options);
      if (result < 0 && errno == EINTR) continue;
      if (result == pid_) reaped_ = true;
      return result;
    }
  }

  pid_t pid_;
  bool reaped_ = false;
};

class PosixLauncher : public ProcessLauncher {
 public:
  std::unique_ptr<RunningProcess> Start(const std::wstring& program, const std::wstring& parameters,
                                        const std::wstring& working_folder) override {
    std::string file = WideToUtf8(program);
    // The parameter text is one argument, exactly as given: the engine parses it itself.
    std::string tail = WideToUtf8(parameters);
    std::string folder = WideToUtf8(working_folder);
    // posix_spawn may report a failed exec only as the child's exit (it does
    // under valgrind), so a program that cannot run is refused here first.
    if (access(file.c_str(), X_OK) != 0) return nullptr;
    SpawnActions actions;
    if (!actions.ok()) return nullptr;
    if (!folder.empty() && posix_spawn_file_actions_addchdir_np(actions.get(), folder.c_str()) != 0) {
      return nullptr;
    }
    char* argv[] = {file.data(), tail.data(), nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, file.c_str(), actions.get(), nullptr, argv, environ) != 0) {
      return nullptr;
    }
    return std::make_unique<PosixProcess>(pid);
  }
};

std::wstring Lowered(std::wstring text) {
  for (wchar_t& c : text) {
    if (c >= L'A' && c <= L'Z') c = c - L'A' + L'a';
  }
  return text;
}

bool NameMatches(const std::wstring& running, const std::wstring& wanted) {
  std::wstring name = Lowered(running);
  if (name == wanted) return true;
  // Windows names carry ".exe"; the same program here usually does not.
  constexpr std::wstring_view kExe = L".exe";
  return wanted.size() > kExe.size() && wanted.ends_with(kExe) &&
         name == wanted.substr(0, wanted.size() - kExe.size());
}

}  // namespace

std::unique_ptr<RunningProcess> AdoptProcess(std::intptr_t native_handle) {
  if (native_handle <= 0) return nullptr;
  return std::make_unique<PosixProcess>(static_cast<pid_t>(native_handle));
}

ProcessLauncher& SystemProcessLauncher() {
  static PosixLauncher launcher;
  return launcher;
}

bool IsProcessRunning(const std::wstring& exe_name) {
  if (exe_name.empty()) return false;
  std::wstring wanted = Lowered(exe_name);
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    std::string pid = entry.path().filename().native();
    if (pid.empty() || !std::all_of(pid.begin(), pid.end(), [](char c) { return c >= '0' && c <= '9'; })) {
      continue;
    }
    // comm is cut at 15 characters; the executable's own name is not.
    std::error_code link_error;
    std::filesystem::path exe = std::filesystem::read_symlink(entry.path() / "exe", link_error);
    if (!link_error && NameMatches(FromFsPath(exe.filename()), wanted)) return true;
    std::ifstream comm(entry.path() / "comm");
    std::string name;
    if (std::getline(comm, name) && NameMatches(Utf8ToWide(name), wanted)) return true;
  }
  return false;
}

}  // namespace tavrine::platform
