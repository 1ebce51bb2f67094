#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "platform/thread_slot.h"

namespace tavrine::foundation {

namespace {

// One slot for both: what this thread loaded and what its calls left behind.
struct ThreadSettings {
  Configuration loaded;
  SharedState state;
};

ThreadSettings& CurrentThreadSettings() {
  static platform::PerThread<ThreadSettings> settings;
  return settings.Get();
}

}  // namespace

Configuration& LoadedConfiguration() { return CurrentThreadSettings().loaded; }

SharedState& ThreadState() { return CurrentThreadSettings().state; }

}  // namespace tavrine::foundation
