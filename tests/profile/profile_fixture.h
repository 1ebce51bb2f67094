#pragma once
#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "foundation/configuration.h"
#include "platform/registry.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::profile {

// A throw-away install folder whose installation name is new for every test,
// so that runs under Wine (real HKEY_CURRENT_USER) never meet old keys; the
// installation's key is removed afterwards.
class ProfileFixture {
 public:
  ProfileFixture() : installation_(FreshInstallationName()) {
    install_.WriteConfiguration("[ProductInfo]\r\nProductInstallationName=" +
                                std::string(installation_.begin(), installation_.end()) +
                                "\r\n");
    foundation::LoadedConfiguration().installation_name = installation_;
  }
  ~ProfileFixture() {
    auto registry = Registry();
    registry->DeleteKeyTree(RootKeyFor(installation_));
    for (const std::wstring& name : extra_) registry->DeleteKeyTree(RootKeyFor(name));
  }
  ProfileFixture(const ProfileFixture&) = delete;
  ProfileFixture& operator=(const ProfileFixture&) = delete;

  static std::wstring FreshInstallationName() {
    static std::atomic<unsigned> counter{0};
    auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    return L"TavrinEProfileTest" + std::to_wstring(ticks % 100000000) + L"-" +
           std::to_wstring(counter++);
  }

  // Another installation name, cleaned up with the fixture.
  std::wstring OtherInstallation() { return extra_.emplace_back(FreshInstallationName()); }

  std::unique_ptr<platform::Registry> Registry() const {
    return platform::OpenCurrentUserRegistry(ProfileStoreFile());
  }
  ProfileStore Store() const { return ProfileStore(Registry(), installation_); }

  testing::InstallFolder& install() { return install_; }
  const std::wstring& installation() const { return installation_; }

 private:
  testing::InstallFolder install_;
  std::wstring installation_;
  std::vector<std::wstring> extra_;
};

}  // namespace tavrine::profile
