#pragma once
#include <string>

namespace tavrine::foundation {

// What one call leaves for later calls on the same thread (each apartment
// thread has its own).
struct SharedState {
  // Whether the account spans computers: set by the machine and version
  // requests, the restore and the browsing calls.
  bool multiple_pc = false;
  // The failure texts preloaded for the boxes a later answer shows.
  std::wstring last_error_text;
  std::wstring password_changed_text;
  // The work root the trace log last computed; browsing reuses it.
  std::wstring work_root;
  // Set by the login flow: whether a -505 answer may renew the random number.
  bool renew_random_permitted = false;
};

SharedState& ThreadState();

}  // namespace tavrine::foundation
