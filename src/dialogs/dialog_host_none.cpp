#include "dialogs/dialog_host.h"
#include "foundation/trace_log.h"

namespace tavrine::dialogs {

namespace {
// Without a window system the commands report that nothing was shown.
class NoWindowHost final : public DialogHost {
 public:
  std::int16_t ShowLoginDialog(std::intptr_t) override {
    foundation::Trace(L"Login dialog not available on this platform");
    return 0;
  }
  bool ShowSessionWindow(std::intptr_t, bool) override { return false; }
};
}  // namespace

DialogHost& SystemDialogHost() {
  static NoWindowHost host;
  return host;
}

}  // namespace tavrine::dialogs
