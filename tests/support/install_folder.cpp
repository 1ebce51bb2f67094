#include "support/install_folder.h"

#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "profile/profile_store.h"

namespace tavrine::testing {

std::string StandardConfiguration(const std::string& more, const std::string& language,
                                  const std::string& installation) {
  return "[ProductInfo]\r\nProductNumber=7\r\nProductName=TavrinE\r\n"
         "ProductInstallationName=" + installation + "\r\nProductTreeViewName=TavrinE Backup\r\n"
         "Language=" + language +
         "\r\nProductCaption=TavrinE Online Backup\r\nExeGroup=TavrinE\r\n"
         "[ConnectionInfo]\r\nDomainName=localhost\r\nIPAddress1=127.0.0.1\r\nPort=443\r\n" +
         more;
}

namespace {
platform::Services SeamsFor(const TempFolder& folder, FakeClock& clock, RecordingUi& ui) {
  platform::Services seams;
  seams.clock = &clock;
  seams.ui = &ui;
  seams.module_folder = folder.wpath();
  return seams;
}
}  // namespace

InstallFolder::InstallFolder() : services_(SeamsFor(folder_, clock_, ui_)) {
  // Each test starts from fresh process-wide settings on its thread.
  foundation::LoadedConfiguration() = {};
  foundation::ThreadState() = {};
}

void InstallFolder::WriteConfiguration(const std::string& ini_text) {
  WriteFileBytes(path() / "Configuration.ini", ini_text);
}

void InstallFolder::WriteStandardConfiguration() {
  WriteConfiguration(StandardConfiguration("IPAddress2=127.0.0.2\r\n"));
}

void InstallFolder::WriteUserNameIni(const std::string& ini_text) {
  WriteFileBytes(path() / "UserName.ini", ini_text);
}

void ResetProfileStore() {
  auto store = profile::ProfileStore::ForCurrentInstallation();
  if (store.available()) store.registry().DeleteKeyTree(store.root_key());
}

}  // namespace tavrine::testing
