#pragma once
#include <filesystem>
#include <string>

#include "platform/services.h"
#include "support/fake_clock.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"

namespace tavrine::testing {

// A complete Configuration.ini: product "TavrinE", installation "TavrinETest" unless
// named, ExeGroup "TavrinE", server localhost:443; `more` ends its [ConnectionInfo] section.
std::string StandardConfiguration(const std::string& more = "",
                                  const std::string& language = "English",
                                  const std::string& installation = "TavrinETest");

// A throw-away library folder with fake clock and recorded message boxes,
// installed as the current thread's seams for the life of the object.
class InstallFolder {
 public:
  InstallFolder();

  const std::filesystem::path& path() const { return folder_.path(); }
  std::wstring wpath() const { return folder_.wpath(); }
  FakeClock& clock() { return clock_; }
  RecordingUi& ui() { return ui_; }

  void WriteConfiguration(const std::string& ini_text);
  // StandardConfiguration() with a second server address.
  void WriteStandardConfiguration();
  void WriteUserNameIni(const std::string& ini_text);

 private:
  TempFolder folder_;
  FakeClock clock_;
  RecordingUi ui_;
  platform::ScopedServices services_;
};

// Removes the current installation's profile tree. On Windows the store is
// the real HKEY_CURRENT_USER, so each test starts and ends with a clean one.
void ResetProfileStore();

}  // namespace tavrine::testing
