#pragma once
#include <string>

namespace tavrine::foundation {

// What one call leaves for later calls on the same thread (each apartment
// thread has its own): set by the subsystems named beside each field.
struct SharedState {
  // Set by the machine list and the restore: whether the account spans computers.
  bool multiple_pc = false;
  // The failure texts of the last engine answer, for the message shown later.
  std::wstring last_error_text;
  std::wstring password_changed_text;
  // The work root the trace log last computed; browsing reuses it.
  std::wstring work_root;
  // Set by the login flow: whether a -505 answer may renew the random number.
  bool renew_random_permitted = false;
};

SharedState& ThreadState();

}  // namespace tavrine::foundation
