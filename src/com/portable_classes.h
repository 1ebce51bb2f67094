#pragma once
// The portable class behind each COM class, and the methods that have no
// portable implementation yet, in one place. A wrapper of a listed method
// returns its failure value and traces "<Method> : not available". Wiring a
// method is deleting its line; wiring a class is also changing its alias.
#include <array>
#include <iterator>
#include <string_view>
#include <type_traits>

#include "com/com_call.h"
#include "contract/c_backup.h"
#include "contract/c_restore.h"
#include "contract/cls_api_interface.h"
#include "contract/cls_client.h"
#include "contract/tavrine_enum.h"
#include "contract/ui_commands.h"

namespace tavrine::com {

using UICommandsImpl = tavrine::contract::UICommands;
using clsAPI_InterfaceImpl = tavrine::contract::clsAPI_Interface;
using clsClientImpl = tavrine::contract::clsClient;
using CRestoreImpl = tavrine::contract::CRestore;
using CBackupImpl = tavrine::contract::CBackup;
using TavrinEenumImpl = tavrine::contract::TavrinEenum;

// Every method has its portable implementation now; a method added to the
// interface before its behaviour is built is listed here.
inline constexpr std::array<std::wstring_view, 0> kNotAvailableMethods{};

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
