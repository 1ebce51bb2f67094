// The machine list text (profile value "List": items "name|id|1;" or
// "name|0;") through ReadMachineList: every machine kept must be a name that
// can become a folder, and the value must come back from the store unchanged.
#include <cstdint>
#include <cstdlib>

#include "browsing/browsing_state.h"
#include "contract/tavrine_enum.h"
#include "fuzz_support.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavrine;
  fuzz::Begin();
  static const bool ready = [] {
    profile::SetCurrentUserName(L"fuzzuser");
    return true;
  }();
  (void)ready;
  std::wstring list = fuzz::BytesAsUtf16(fuzz::AsView(data, size));
  // A stored value ends at its first NUL, as REG_SZ does.
  list = list.substr(0, list.find(L'\0'));
  if (!profile::UpdateUserProfile(L"List", list)) std::abort();
  // Lone surrogates have no UTF-8 form in the POSIX store file; all else must come back.
  bool surrogates = false;
  for (wchar_t c : list) surrogates = surrogates || (c >= 0xD800 && c <= 0xDFFF);
  if (!surrogates && profile::GetUserProfile(L"List") != list) std::abort();
  contract::TavrinEenum enumeration;
  if (enumeration.ReadMachineList() < 0) std::abort();
  for (const std::wstring& machine : browsing::CurrentBrowsingState().machine_list) {
    if (!profile::IsSafeName(machine)) std::abort();
  }
  return 0;
}
