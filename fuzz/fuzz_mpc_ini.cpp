// MPC.ini in an exchange or user folder: HostCount decides the several-computer
// flag and the file is rewritten for this computer; its Hosts list is read by
// the machine-list splitter, which is file-local to the remote browser (its
// source is compiled into this target).
#include <cstdint>
#include <cstdlib>

#include "../src/browsing/remote_browser.cpp"
#include "engine/mpc_ini.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("mpc/MPC.ini", tavrine::fuzz::AsView(data, size));
  const std::wstring folder = tavrine::fuzz::WidePath("mpc");
  auto state = tavrine::engine::UpdateMpcIniForThisComputer(folder);
  const std::wstring file = tavrine::engine::MpcIniPath(folder);
  if (!state.multiple_pc && state.host_count != L"1" &&
      tavrine::platform::ReadIniString(L"MPC", L"HostCount", file) != L"1")
    std::abort();
  const std::wstring hosts = tavrine::platform::ReadIniString(L"MPC", L"Hosts", file);
  for (const std::wstring& machine : tavrine::browsing::MachinesOfList(hosts, L"ReadMachineList")) {
    if (!tavrine::profile::IsSafeName(machine)) std::abort();
  }
  return 0;
}
