#pragma once
#include <string>

namespace tavrine::engine {

struct MpcState {
  std::wstring host_count;
  bool multiple_pc = false;
};

// Reads HostCount of <folder>/MPC.ini, sets the shared multiple-computer flag
// from it, and when it is not "1" and names no several computers, records this
// computer as the only host.
MpcState UpdateMpcIniForThisComputer(const std::wstring& folder);

std::wstring MpcIniPath(const std::wstring& folder);

// The computer's user name: UserName of UserName.ini, or the current user.
std::wstring ThisComputerUserName();

}  // namespace tavrine::engine
