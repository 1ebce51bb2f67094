#pragma once
#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/process.h"
#include "platform/ui.h"

namespace tavrine::platform {

// The replaceable seams of the current thread. Production code reads them
// through Current(); tests swap them with ScopedServices.
struct Services {
  Clock* clock = nullptr;
  Ui* ui = nullptr;
  ProcessLauncher* launcher = nullptr;
  std::optional<std::wstring> module_folder;  // overrides ModuleFolder()
};

Services& Current();
Clock& CurrentClock();
Ui& CurrentUi();
ProcessLauncher& CurrentLauncher();

// Installs the given seams for the life of the object on this thread; fields
// left empty keep what was there.
class ScopedServices {
 public:
  explicit ScopedServices(const Services& replacement);
  ~ScopedServices();
  ScopedServices(const ScopedServices&) = delete;
  ScopedServices& operator=(const ScopedServices&) = delete;

 private:
  Services saved_;
};

}  // namespace tavrine::platform
