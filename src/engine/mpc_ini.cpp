#include "engine/mpc_ini.h"

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/shared_state.h"
#include "platform/ini_file.h"
#include "profile/profile_store.h"
#include "profile/user_name_ini.h"

namespace tavrine::engine {

std::wstring MpcIniPath(const std::wstring& folder) {
  return foundation::JoinPath(folder, L"MPC.ini");
}

std::wstring ThisComputerUserName() {
  std::wstring name = profile::ReadUserNameIniUserName();
  return name.empty() ? profile::CurrentUserName() : name;
}

MpcState UpdateMpcIniForThisComputer(const std::wstring& folder) {
  MpcState state;
  std::wstring file = MpcIniPath(folder);
  state.host_count = platform::ReadIniString(L"MPC", L"HostCount", file);
  state.multiple_pc = !state.host_count.empty() && state.host_count != L"0";
  foundation::ThreadState().multiple_pc = state.multiple_pc;
  if (state.host_count != L"1" && !state.multiple_pc) {
    platform::WriteIniString(L"MPC", L"Hosts", ThisComputerUserName() + L"|0;", file);
    platform::WriteIniString(L"MPC", L"HostCount", L"1", file);
  }
  return state;
}

}  // namespace tavrine::engine
