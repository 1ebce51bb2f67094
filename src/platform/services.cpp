#include "platform/services.h"

#include "platform/module_folder.h"
#include "platform/thread_slot.h"

namespace tavrine::platform {

Services& Current() {
  static PerThread<Services> services;
  return services.Get();
}

Clock& CurrentClock() {
  Clock* clock = Current().clock;
  return clock ? *clock : SystemClock();
}

Ui& CurrentUi() {
  Ui* ui = Current().ui;
  return ui ? *ui : SystemUi();
}

ProcessLauncher& CurrentLauncher() {
  ProcessLauncher* launcher = Current().launcher;
  return launcher ? *launcher : SystemProcessLauncher();
}

ScopedServices::ScopedServices(const Services& replacement) : saved_(Current()) {
  Services& now = Current();
  if (replacement.clock) now.clock = replacement.clock;
  if (replacement.ui) now.ui = replacement.ui;
  if (replacement.launcher) now.launcher = replacement.launcher;
  if (replacement.module_folder) now.module_folder = replacement.module_folder;
}

ScopedServices::~ScopedServices() { Current() = saved_; }

}  // namespace tavrine::platform
