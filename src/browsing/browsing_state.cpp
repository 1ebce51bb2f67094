#include "browsing/browsing_state.h"

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/shared_state.h"
#include "foundation/trace_log.h"
#include "platform/path.h"
#include "platform/thread_slot.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"

namespace tavrine::browsing {

BrowsingState& CurrentBrowsingState() {
  static platform::PerThread<BrowsingState> state;
  return state.Get();
}

bool& MultiplePcSupport() { return foundation::ThreadState().multiple_pc; }

bool CountMeansSeveral(const std::wstring& count) { return !count.empty() && count != L"0"; }

std::wstring BrowsingUserName() {
  std::wstring user = profile::GetUserProfile(L"UserName");
  return user.empty() ? profile::CurrentUserName() : user;
}

std::wstring BrowsingUserFolder(const std::wstring& user) {
  if (foundation::ThreadState().work_root.empty())
    foundation::ThreadState().work_root = foundation::ComputeWorkRoot();
  return foundation::ThreadState().work_root + foundation::LoadedConfiguration().installation_name +
         user;
}

std::wstring ListingFile(const std::wstring& user, const std::wstring& machine) {
  std::wstring folder = BrowsingUserFolder(user);
  if (!machine.empty()) folder = foundation::JoinPath(folder, machine);
  return foundation::JoinPath(folder, L"Backupfile.txt");
}

bool LoadListing(const std::wstring& user) {
  BrowsingState& state = CurrentBrowsingState();
  auto listing = std::make_shared<RemoteListing>();
  listing->root().base_path_ = foundation::ComputeWorkRoot();
  bool read = false;
  if (!profile::IsSafeName(user)) {
    foundation::Trace(L"InitTree : the user name cannot be a folder name");
  } else if (!MultiplePcSupport()) {
    const std::wstring file = ListingFile(user, L"");
    if (!foundation::FileExists(file)) {
      foundation::Trace(L"No Backup File , So exiting");
    } else {
      foundation::Trace(L"InitTree : Single machine data so reading " + file);
      read = listing->AddFile(file, L"");
    }
  } else {
    const std::size_t machines = state.machine_list.size();
    foundation::Trace(L"InitTree : " + std::to_wstring(machines) + L" Machine");
    if (machines != 1) {
      for (const std::wstring& machine : state.machine_list) {
        if (!profile::IsSafeName(machine)) continue;
        read = listing->AddFile(ListingFile(user, machine), machine) || read;
      }
    }
  }
  listing->Finish();
  state.listing = std::move(listing);
  return read;
}

bool ReloadListing(const std::wstring& user) {
  const std::wstring list = profile::GetUserProfile(L"List");
  std::wstring hosts = profile::GetUserProfile(L"HostCount");
  if (!CountMeansSeveral(hosts)) hosts = profile::GetUserProfile(L"Count");
  MultiplePcSupport() = !list.empty() && CountMeansSeveral(hosts);
  return LoadListing(user.empty() ? BrowsingUserName() : user);
}

}  // namespace tavrine::browsing
