// UI_Login_Command and UI_Session_Command: the two commands that open windows.
// The windows themselves come through the dialog host, so this file stays portable.
#include "dialogs/dialog_host.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/trace_log.h"
#include "operations/ui_commands.h"
#include "platform/module_folder.h"
#include "platform/services.h"

namespace tavrine::operations {

namespace {

constexpr std::int16_t kCancelledByUser = -424;

// The marker left when the user cancelled a login elsewhere; used once.
int CheckLoginCancelledMarker() {
  const std::wstring marker = foundation::JoinPath(platform::ModuleFolder(), L"NDCancelled.txt");
  if (!foundation::FileExists(marker)) return 0;
  foundation::DeleteFileIfExists(marker);
  return -1;
}

}  // namespace

std::int16_t UICommands::UI_Login_Command(std::int32_t& hHandle) {
  std::int16_t result = 0;
  try {
    foundation::LoadConfigurations();
    platform::CurrentUi().CloseWindowByTitle(foundation::CurrentSettings().caption + L" - Login");
    if (CheckLoginCancelledMarker() == -1) return kCancelledByUser;
    result = dialogs::CurrentDialogHost().ShowLoginDialog(hHandle);
  } catch (...) {
    foundation::TraceException(L"UI_Login_Command", foundation::DescribeCurrentException());
  }
  return result;
}

std::int32_t UICommands::UI_Session_Command(std::int32_t& hHandle) {
  std::int32_t result = 0;
  try {
    result = dialogs::CurrentDialogHost().ShowSessionWindow(hHandle, true) ? 1 : 0;
  } catch (...) {
    foundation::TraceException(L"UI_Session_Command", foundation::DescribeCurrentException());
  }
  return result;
}

}  // namespace tavrine::operations
