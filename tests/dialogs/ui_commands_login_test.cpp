#include <gtest/gtest.h>

#include <fstream>

#include "dialogs/dialog_host.h"
#include "contract/ui_commands.h"
#include "support/install_folder.h"

namespace tavrine::operations {

using contract::UICommands;
namespace {

class RecordingHost : public dialogs::DialogHost {
 public:
  std::int16_t answer = 403;
  std::vector<std::intptr_t> login_owners;
  std::vector<std::intptr_t> session_owners;
  std::int16_t ShowLoginDialog(std::intptr_t owner) override {
    login_owners.push_back(owner);
    return answer;
  }
  bool ShowSessionWindow(std::intptr_t owner, bool modal) override {
    EXPECT_TRUE(modal);
    session_owners.push_back(owner);
    return true;
  }
};

class UiLoginCommand : public ::testing::Test {
 protected:
  UiLoginCommand() : scoped_(host_) { install_.WriteStandardConfiguration(); }
  testing::InstallFolder install_;
  RecordingHost host_;
  dialogs::ScopedDialogHost scoped_;
};

TEST_F(UiLoginCommand, ClosesAnOpenLoginWindowThenShowsTheDialog) {
  install_.ui().set_open_windows({L"TavrinE Online Backup - Login"});
  std::int32_t owner = 77;
  EXPECT_EQ(UICommands().UI_Login_Command(owner), 403);
  EXPECT_EQ(install_.ui().closed_windows(),
            (std::vector<std::wstring>{L"TavrinE Online Backup - Login"}));
  EXPECT_EQ(host_.login_owners, (std::vector<std::intptr_t>{77}));
}

TEST_F(UiLoginCommand, CancelledMarkerGivesMinus424WithoutADialog) {
  std::ofstream(install_.path() / "NDCancelled.txt") << "x";
  std::int32_t owner = 0;
  EXPECT_EQ(UICommands().UI_Login_Command(owner), -424);
  EXPECT_TRUE(host_.login_owners.empty());
  // The marker counts once.
  EXPECT_EQ(UICommands().UI_Login_Command(owner), 403);
}

TEST_F(UiLoginCommand, SessionCommandShowsTheSessionWindowOwnedByTheCaller) {
  std::int32_t owner = 1234;
  EXPECT_EQ(UICommands().UI_Session_Command(owner), 1);
  EXPECT_EQ(host_.session_owners, (std::vector<std::intptr_t>{1234}));
}

}  // namespace
}  // namespace tavrine::operations
