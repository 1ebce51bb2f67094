#include "platform/process.h"

#include <windows.h>
#include <shellapi.h>
#include <tlhelp32.h>

#include "platform/code_page.h"
#include "platform/win32/unique_owners.h"

namespace tavrine::platform {

namespace {

using win32::UniqueFileHandle;
using win32::UniqueHandle;

// TerminateProcess only starts the end; give the program this long to let go of its files.
constexpr DWORD kTerminateSettleMs = 5000;

class Win32Process : public RunningProcess {
 public:
  explicit Win32Process(HANDLE handle) : handle_(handle) {}

  WaitOutcome Wait(std::uint32_t timeout_ms) override {
    if (!handle_) return WaitOutcome::kFailed;
    switch (WaitForSingleObject(handle_.get(), timeout_ms)) {
      case WAIT_OBJECT_0:
        return WaitOutcome::kExited;
      case WAIT_TIMEOUT:
        return WaitOutcome::kStillRunning;
      default:
        return WaitOutcome::kFailed;
    }
  }

  bool Terminate(std::uint32_t exit_code) override {
    if (!handle_ || !TerminateProcess(handle_.get(), exit_code)) return false;
    WaitForSingleObject(handle_.get(), kTerminateSettleMs);
    return true;
  }

  std::intptr_t Release() override {
    return reinterpret_cast<std::intptr_t>(handle_.release());
  }

 private:
  UniqueHandle handle_;
};

class Win32Launcher : public ProcessLauncher {
 public:
  std::unique_ptr<RunningProcess> Start(const std::wstring& program, const std::wstring& parameters,
                                        const std::wstring& working_folder) override {
    std::string file = WideToAnsi(program);
    std::string tail = WideToAnsi(parameters);
    std::string folder = WideToAnsi(working_folder);

    SHELLEXECUTEINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    // The engine has always been started with window handle 1, not a real window.
    info.hwnd = reinterpret_cast<HWND>(static_cast<std::intptr_t>(1));
    info.lpVerb = "open";
    info.lpFile = file.c_str();
    info.lpParameters = tail.c_str();
    info.lpDirectory = folder.empty() ? nullptr : folder.c_str();
    info.nShow = SW_HIDE;
    if (!ShellExecuteExA(&info)) {
      if (info.hProcess) CloseHandle(info.hProcess);
      return nullptr;
    }
    if (!info.hProcess) return nullptr;
    return std::make_unique<Win32Process>(info.hProcess);
  }
};

}  // namespace

std::unique_ptr<RunningProcess> AdoptProcess(std::intptr_t native_handle) {
  if (native_handle == 0 || native_handle == -1) return nullptr;
  return std::make_unique<Win32Process>(reinterpret_cast<HANDLE>(native_handle));
}

ProcessLauncher& SystemProcessLauncher() {
  static Win32Launcher launcher;
  return launcher;
}

bool IsProcessRunning(const std::wstring& exe_name) {
  if (exe_name.empty()) return false;
  UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  if (!snapshot) return false;
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(snapshot.get(), &entry); more;
       more = Process32NextW(snapshot.get(), &entry)) {
    if (CompareStringOrdinal(entry.szExeFile, -1, exe_name.c_str(),
                             static_cast<int>(exe_name.size()), TRUE) == CSTR_EQUAL) {
      return true;
    }
  }
  return false;
}

}  // namespace tavrine::platform
