// UI_Login_Command and UI_Session_Command, the two commands that open windows
// through the dialog host (the real windows on Windows, none elsewhere).
#include "contract/failure_boundary.h"
#include "contract/ui_commands.h"
#include "dialogs/dialog_host.h"

namespace tavrine::contract {

std::int16_t UICommands::UI_Login_Command(std::int32_t& hHandle) try {
  return dialogs::RunLoginCommand(hHandle);
} TAVRINE_CATCH_RETURN(L"UI_Login_Command", 0)

std::int32_t UICommands::UI_Session_Command(std::int32_t& hHandle) try {
  return dialogs::RunSessionCommand(hHandle) ? 1 : 0;
} TAVRINE_CATCH_RETURN(L"UI_Session_Command", 0)

}  // namespace tavrine::contract
