#pragma once
// The portable class behind each COM class, and the methods that have no
// portable implementation yet, in one place. A wrapper of a listed method
// returns its failure value and traces "<Method> : not available". Wiring a
// method is deleting its line; wiring a class is also changing its alias.
#include <iterator>
#include <string_view>
#include <type_traits>

#include "com/com_call.h"
#include "engine/cls_client.h"
#include "operations/cls_api_interface.h"
#include "operations/ui_commands.h"

namespace tavrine::com {

using UICommandsImpl = tavrine::operations::UICommands;
using TavrinEenumImpl = NotAvailable;  // tavrine::browsing::TavrinEenum
using clsAPI_InterfaceImpl = tavrine::operations::clsAPI_Interface;
using clsClientImpl = tavrine::engine::clsClient;
using CRestoreImpl = NotAvailable;  // tavrine::operations::CRestore
using CBackupImpl = NotAvailable;   // tavrine::operations::CBackup

inline constexpr std::wstring_view kNotAvailableMethods[] = {
    // UICommands
    L"UI_Login_Command",
    L"UI_Session_Command",
    L"W_DeleteRemoteFiles",
    L"W_Dummycall",
    // TavrinEenum
    L"TavrinEInit",
    L"W_GetCurrentUser",
    L"TavrinEFindFirstFile",
    L"TavrinENextFile",
    L"TavrinEExitInstance",
    L"TavrinELocalRefresh",
    L"GetFirstVersion",
    L"GetNextVersion",
    L"GetFileVersion",
    L"GetMultiplePCInfo",
    L"ReadMachineList",
    L"IsItemExists",
    // clsAPI_Interface
    L"API_ENTRY_RESTORE",
    L"API_GETVERSIONS",
    L"API_DELETE_REMOTE_FILE",
    L"API_FirewallSettings",
    // CRestore
    L"W_Restore",
    L"W_GetVersions",
    // CBackup
    L"W_BackupInit",
    L"DoBackupInit",
    L"W_DoBackup",
    L"W_BackupExitInstance",
    L"DisableScheduleBackup",
    L"ResetConfigurations",
    L"StopScheduleBackup",
    L"IsScheduleBackupRunning",
    L"BackupInit",
    L"IsBackupCancelled",
    L"EnableScheduleBackup",
};

constexpr bool IsNotAvailable(std::wstring_view method) {
  for (std::wstring_view listed : kNotAvailableMethods)
    if (listed == method) return true;
  return false;
}

// Calls body(impl), or for a listed method writes "<Method> : not available"
// and leaves the results at their failure values.
template <MethodName kName, class Impl, class Body>
void CallPortable(Impl& impl, Body&& body) {
  static_assert(!std::is_same_v<Impl, NotAvailable> || IsNotAvailable(kName.view()),
                "a method of a class without a portable implementation must be listed");
  if constexpr (IsNotAvailable(kName.view())) {
    (void)impl;
    (void)body;
    foundation::Trace(std::wstring(kName.view()) + L" : not available");
  } else {
    body(impl);
  }
}

}  // namespace tavrine::com
