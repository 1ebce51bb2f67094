#include "support/install_folder.h"

#include "foundation/settings.h"

namespace tavrine::testing {

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
  foundation::CurrentSettings() = foundation::Settings{};
}

void InstallFolder::WriteConfiguration(const std::string& ini_text) {
  WriteFileBytes(path() / "Configuration.ini", ini_text);
}

void InstallFolder::WriteStandardConfiguration() {
  WriteConfiguration(
      "[ProductInfo]\r\n"
      "ProductNumber=7\r\n"
      "ProductName=TavrinE\r\n"
      "ProductInstallationName=TavrinETest\r\n"
      "ProductTreeViewName=TavrinE Backup\r\n"
      "Language=English\r\n"
      "ProductCaption=TavrinE Online Backup\r\n"
      "ExeGroup=TavrinE\r\n"
      "[ConnectionInfo]\r\n"
      "DomainName=localhost\r\n"
      "IPAddress1=127.0.0.1\r\n"
      "IPAddress2=127.0.0.2\r\n"
      "Port=443\r\n");
}

void InstallFolder::WriteUserNameIni(const std::string& ini_text) {
  WriteFileBytes(path() / "UserName.ini", ini_text);
}

std::wstring InstallFolder::WorkRoot() const { return foundation::ComputeWorkRoot(); }

}  // namespace tavrine::testing

#include "profile/profile_store.h"

namespace tavrine::testing {

void ResetProfileStore() {
  auto store = profile::ProfileStore::ForCurrentInstallation();
  if (store.available()) store.registry().DeleteKeyTree(store.root_key());
}

}  // namespace tavrine::testing
