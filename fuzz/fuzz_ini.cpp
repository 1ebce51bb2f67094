// The private-profile reader and writer over any file: reads of several keys,
// then a write and a read back of the written value.
#include <cstdint>
#include <cstdlib>

#include "fuzz_support.h"
#include "platform/ini_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using tavrine::platform::ReadIniString;
  using tavrine::platform::WriteIniString;
  tavrine::fuzz::Begin();
  tavrine::fuzz::WriteFile("file.ini", tavrine::fuzz::AsView(data, size));
  const std::wstring file = tavrine::fuzz::WidePath("file.ini");
  for (const wchar_t* section : {L"MPC", L"Registry", L"ConnectionInfo", L"a"}) {
    for (const wchar_t* key : {L"HostCount", L"Hosts", L"VirtualPath", L"b"}) {
      if (ReadIniString(section, key, file).size() > tavrine::platform::kIniValueMax) std::abort();
    }
  }
  if (WriteIniString(L"MPC", L"HostCount", L"2", file) &&
      ReadIniString(L"MPC", L"HostCount", file) != L"2")
    std::abort();
  return 0;
}
