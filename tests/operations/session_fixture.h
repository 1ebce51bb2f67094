#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "foundation/configuration.h"
#include "platform/services.h"
#include "support/engine_harness.h"
#include "support/fake_clock.h"
#include "support/recording_ui.h"

namespace tavrine::testing {

// An install folder with the reference engine under both of its names, a
// complete configuration, a logged-in user "alice", a fake clock and recorded boxes.
class SessionTest : public ::testing::Test {
 protected:
  SessionTest();
  void SetUp() override;
  void TearDown() override;

  std::wstring UserFolder() const;
  std::wstring TempRoot() const;
  // A caller-made exchange folder, as the shell side makes it.
  std::wstring CallerFolder(const std::wstring& name);
  // Folders under TempRoot(), or under `root`; 0 when it is not there.
  std::size_t ExchangeFoldersLeft() const;
  static std::size_t FoldersIn(const std::filesystem::path& root);
  // A list of remote items to delete, as the shell side writes it.
  std::wstring DeleteList(const std::string& items = "C:\\a.txt\r\n") const;
  std::string TraceText() const;

  EngineInstall install_;
  FakeClock clock_;
  RecordingUi ui_;
  std::optional<platform::ScopedServices> seams_;
};

}  // namespace tavrine::testing
