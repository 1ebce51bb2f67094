#include "browsing/remote_browser.h"

#include "browsing/browsing_state.h"
#include "browsing/case_fold.h"
#include "engine/engine_call.h"
#include "engine/engine_codes.h"
#include "engine/engine_run.h"
#include "engine/exchange_folder.h"
#include "engine/proxy.h"
#include "engine/result_file.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/shared_state.h"
#include "foundation/text_util.h"
#include "foundation/tokenizer.h"
#include "foundation/trace_log.h"
#include "operations/shared_texts.h"
#include "platform/ini_file.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"

namespace tavrine::browsing {

namespace {

using foundation::Trace;

constexpr std::uint32_t kPauseMs = 100;

constexpr const wchar_t* kPasswordChangedTwoLines =
    L"Login failed. Reason: The requested operation has failed due to change of password in the "
    L"website.\r\nPlease log out and log in with the new password to continue the operation.";

std::wstring MachineFile(const std::wstring& user) {
  return foundation::JoinPath(BrowsingUserFolder(user), L"MPC.ini");
}

// Machines of a "List" text: items split at ";", fields at "|"; an item is
// taken when its third field is 1, or when it is the single-computer form.
// `method` names the caller in the trace line of a name left out.
std::vector<std::wstring> MachinesOfList(const std::wstring& list, const wchar_t* method) {
  std::vector<std::wstring> machines;
  foundation::StringTokenizer items(list, L";");
  while (items.hasMoreTokens()) {
    std::wstring item = items.nextToken();
    if (item.empty()) continue;
    std::vector<std::wstring> fields;
    foundation::StringTokenizer parts(item, L"|");
    while (parts.hasMoreTokens()) fields.push_back(parts.nextToken());
    const bool taken = (fields.size() >= 3 && foundation::LeadingNumber(fields[2]) == 1) ||
                       (fields.size() == 2 && fields[1] == L"0");
    if (!taken) continue;
    if (!profile::IsSafeName(fields[0])) {
      Trace(std::wstring(method) + L" : a machine name that cannot be a folder name is left out");
      continue;
    }
    machines.push_back(fields[0]);
  }
  return machines;
}

bool SameItem(const std::wstring& a, const std::wstring& b) {
  return UpperCaseText(a) == UpperCaseText(b);
}

void AddMachine(std::vector<std::wstring>& list, const std::wstring& machine) {
  for (const std::wstring& known : list)
    if (SameItem(known, machine)) return;
  list.push_back(machine);
}

std::wstring JoinedList(const std::vector<std::wstring>& machines) {
  std::wstring text;
  for (const std::wstring& machine : machines) text += machine + L";";
  return text;
}

}  // namespace

bool RemoteBrowser::LoadFromEngine() {
  engine::Session session = engine::Session::Open();
  engine::Connection& connection = session.connection();
  const std::wstring host_id = engine::Connection::ProfileValue(L"HostID");
  std::wstring machine_count = engine::Connection::ProfileValue(L"Count");
  Trace(L"TavrinEInit :: strHostId : " + host_id + L"  strMachineCount : " + machine_count);
  Trace(L"TavrinEInit :: Calling GetMultiplePCInfo");
  // The machine list is a side query: its failure must not stop the load.
  try {
    QueryMachines();
  } catch (...) {
    foundation::TraceException(L"GetMultiplePCInfo", foundation::DescribeCurrentException());
  }
  if (!host_id.empty() && !machine_count.empty())
    MultiplePcSupport() = CountMeansSeveral(machine_count);

  user_name_ = BrowsingUserName();
  if (!profile::IsSafeName(user_name_)) {
    Trace(L"TavrinEInit : the user name cannot be a folder name");
    return false;
  }
  const std::wstring user_folder = BrowsingUserFolder(user_name_);
  if (!MultiplePcSupport()) foundation::CreateFolder(user_folder);
  const std::wstring folder = engine::MakeExchangeFolder(user_folder, L"_1234");
  if (folder.empty()) {
    Trace(L"TavrinEInit : exchange folder could not be created");
    return false;
  }

  engine::EngineCallSetup setup;
  setup.program = engine::FixedEngineProgram();
  setup.command = engine::kCodeBrowseInit;
  setup.folder = folder;
  auto process = engine::StartEngineCall(setup, [&](const std::wstring& into) {
    connection.WriteMachineRequest(
        into, engine::ProxyArguments(session.proxy(), engine::RandomNumberForRequest()));
  });
  if (!process) return false;
  // Started and waited for by hand: a run that did not end by itself must
  // leave its result files unread, where CallEngine would read them.
  if (engine::WaitPumping(process.get(), kPauseMs) != engine::RunEnd::kExited) return false;
  engine::ReadResultFile(folder);
  machine_count = engine::Connection::ProfileValue(L"Count");
  Trace(L"TavrinEInit :: AFTER 122 CALL strPCInfo = " + machine_count);
  MultiplePcSupport() = CountMeansSeveral(machine_count);
  Trace(MultiplePcSupport() ? L"TavrinEInit :: g_bMultiplePCSupport = True "
                            : L"TavrinEInit :: g_bMultiplePCSupport = False ");

  foundation::DeleteFileIfExists(foundation::JoinPath(folder, L"DLLInput.txt"));
  bool read = LoadListing(user_name_);
  tree_ = CurrentBrowsingState().listing;
  cursor_ = EnumCursor{};
  return read;
}

std::int32_t RemoteBrowser::FindFirst(const std::wstring& folder, FindData& entry) {
  cursor_ = EnumCursor{};
  tree_ = CurrentBrowsingState().listing;
  if (!tree_) {
    SetEmptyValues(entry);
    return -1;
  }
  return tree_->FindFirst(folder, cursor_, entry);
}

std::int32_t RemoteBrowser::FindNext(FindData& entry) {
  const std::shared_ptr<const RemoteListing>& current = CurrentBrowsingState().listing;
  if (!current) {
    tree_.reset();
    cursor_ = EnumCursor{};
    SetEmptyValues(entry);
    return -1;
  }
  if (tree_ != current) {
    // Another object of this thread loaded again: the entries are shared,
    // so the walk goes on over the new load.
    tree_ = current;
    return tree_->Continue(cursor_, entry);
  }
  return tree_->FindNext(cursor_, entry);
}

void RemoteBrowser::Close() {
  cursor_ = EnumCursor{};
  tree_.reset();
  CurrentBrowsingState().listing.reset();
}

bool RemoteBrowser::LoadFromDisk() {
  bool result = false;
  Close();
  engine::Session::Open();
  const std::wstring list = engine::Connection::ProfileValue(L"List");
  std::wstring hosts = engine::Connection::ProfileValue(L"HostCount");
  if (!CountMeansSeveral(hosts)) hosts = engine::Connection::ProfileValue(L"Count");
  MultiplePcSupport() = !list.empty() && CountMeansSeveral(hosts);
  user_name_ = BrowsingUserName();

  if (MultiplePcSupport()) {
    Trace(L"TavrinELocalRefresh :: calling ReadMachineList for " + user_name_ + L" user");
    ReadMachines();
    bool all_present = true;
    for (const std::wstring& machine : CurrentBrowsingState().machine_list) {
      if (!foundation::FileExists(ListingFile(user_name_, machine))) {
        Trace(L"TavrinELocalRefresh :: Backupfile doe snt exist for " + machine +
              L"Machine So calling TavrinEInit ");
        all_present = false;
        break;
      }
    }
    result = all_present ? ReloadListing(user_name_) : LoadFromEngine();
  } else if (!foundation::FileExists(ListingFile(user_name_, L""))) {
    Trace(L"TavrinELocalRefresh :: Backupfile does nt exist so calling TavrinEInit for " +
          user_name_ + L" user");
    result = LoadFromEngine();
  } else {
    Trace(L"TavrinELocalRefresh :: Backupfile exists for " + user_name_ + L" user");
    result = ReloadListing(user_name_);
  }
  tree_ = CurrentBrowsingState().listing;
  Trace(L"Return value from TavrinELocalRefresh : " + std::to_wstring(result ? 1 : 0));
  return result;
}

std::int32_t RemoteBrowser::QueryMachines() {
  engine::Session session = engine::Session::Open();
  engine::Connection& connection = session.connection();
  const std::wstring user = BrowsingUserName();
  if (!profile::IsSafeName(user)) {
    Trace(L"GetMultiplePCInfo : the user name cannot be a folder name");
    return -1;
  }
  const std::wstring folder = engine::MakeExchangeFolder(BrowsingUserFolder(user));
  if (folder.empty()) {
    Trace(L"GetMultiplePCInfo : exchange folder could not be created");
    return -1;
  }
  operations::PresetConnectionFailureText();

  Trace(L"GetMultiplePCInfo :: Cmd line   119 ");
  engine::EngineCallSetup setup;
  setup.program = engine::ConfiguredEngineProgram();
  setup.command = engine::kCodeMachineList;
  setup.folder = folder;
  const std::int32_t result = engine::CallEngine(setup, [&](const std::wstring& into) {
    connection.WriteRequest(into,
                            engine::ProxyArguments(session.proxy(), engine::RandomNumberForRequest()));
  }).raw();
  foundation::DeleteFolderTree(folder);
  Trace(L"GetMultiplePCInfo :: apiremoteretval  " + std::to_wstring(result));

  BrowsingState& state = CurrentBrowsingState();
  if (result == engine::EngineCode::kPasswordChangedOnWeb) {
    foundation::ThreadState().last_error_text = kPasswordChangedTwoLines;
  } else if (result == engine::EngineCode::kSuccessWithData) {
    const std::wstring count = engine::Connection::ProfileValue(L"Count");
    if (foundation::LeadingNumber(count) != 0) {
      Trace(L"GetMultiplePCInfo :: More than one machine so g_bMultiplePCSupport ");
      MultiplePcSupport() = true;
      const std::wstring list = engine::Connection::ProfileValue(L"List");
      std::wstring hosts_text = list;
      if (list.empty()) {
        AddMachine(state.machine_list, user);
        hosts_text = user + L"|0;";
      } else {
        for (const std::wstring& machine : MachinesOfList(list, L"GetMultiplePCInfo"))
          if (!KnowsMachine(machine)) state.machine_list.push_back(machine);
      }
      const std::wstring file = MachineFile(user);
      foundation::CreateFolder(BrowsingUserFolder(user));
      platform::WriteIniString(L"MPC", L"Hosts", hosts_text, file);
      platform::WriteIniString(L"MPC", L"HostCount", std::to_wstring(state.machine_list.size()),
                               file);
    } else {
      Trace(L"GetMultiplePCInfo :: Only one machine so g_bMultiplePCSupport ");
      MultiplePcSupport() = false;
    }
  }
  Trace(L"GetMultiplePCInfo :: Total Machine Count : " +
        std::to_wstring(state.machine_list.size()));
  Trace(L"GetMultiplePCInfo : Total Machine List : " + JoinedList(state.machine_list));
  return result;
}

std::int32_t RemoteBrowser::ReadMachines() {
  engine::Session::Open();
  const std::wstring user = BrowsingUserName();
  BrowsingState& state = CurrentBrowsingState();
  state.machine_list.clear();
  const std::wstring list = engine::Connection::ProfileValue(L"List");
  if (!profile::IsSafeName(user)) {
    Trace(L"ReadMachineList : the user name cannot be a folder name");
    return -1;
  }
  const std::wstring file = MachineFile(user);
  if (list.empty()) {
    state.machine_list.push_back(user);
    foundation::CreateFolder(BrowsingUserFolder(user));
    platform::WriteIniString(L"MPC", L"Hosts", user + L"|" + L"0;", file);
    platform::WriteIniString(L"MPC", L"HostCount", L"1", file);
  } else {
    for (const std::wstring& machine : MachinesOfList(list, L"ReadMachineList"))
      AddMachine(state.machine_list, machine);
    foundation::CreateFolder(BrowsingUserFolder(user));
    platform::WriteIniString(L"MPC", L"Hosts", list, file);
    platform::WriteIniString(L"MPC", L"HostCount", std::to_wstring(state.machine_list.size()),
                             file);
  }
  Trace(L"ReadMachineList :: Total Machine Count : " + std::to_wstring(state.machine_list.size()));
  Trace(L"ReadMachineList : Total Machine List : " + JoinedList(state.machine_list));
  return static_cast<std::int32_t>(state.machine_list.size());
}

bool RemoteBrowser::KnowsMachine(const std::wstring& machine) const {
  for (const std::wstring& item : CurrentBrowsingState().machine_list)
    if (SameItem(item, machine)) return true;
  return false;
}

}  // namespace tavrine::browsing
