#pragma once
#include <string>

namespace tavrine::comdemo {

// The demo's story through the registered TavrinEUI.dll, by COM only, against
// the sample vault: log in as anna, quota, browse, versions, restore, delete,
// back up (also with a scheduled backup to pause, and cancelled), the firewall
// probe, message texts. `work` is a scratch folder (Windows path), `vault`
// the sample vault the engine serves (read to check the answers). Prints each
// step and a "STEP <name> ok|FAILED <figures>" line; true when all passed.
bool RunStory(const std::wstring& work, const std::wstring& vault);

// Opens the login dialog through UICommands.UI_Login_Command, saves a PNG of
// it to `png`, then cancels it. Needs a display.
bool ScreenshotLogin(const std::wstring& png, const std::wstring& title);

}  // namespace tavrine::comdemo
