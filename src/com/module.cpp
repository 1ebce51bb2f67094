#include "com/module.h"

#include <atomic>

namespace tavrine::com {
namespace {

HMODULE g_module = nullptr;
std::atomic<long> g_module_count{0};

}  // namespace

HMODULE ModuleHandle() noexcept { return g_module; }
void SetModuleHandle(HMODULE module) noexcept { g_module = module; }

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    DWORD length = GetModuleFileNameW(g_module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);  // truncated: long path
  }
}

void ModuleAddRef() noexcept { ++g_module_count; }
void ModuleRelease() noexcept { --g_module_count; }
bool ModuleInUse() noexcept { return g_module_count.load() != 0; }

}  // namespace tavrine::com
