// Show the versions the service keeps of one remote file, newest first.
//
//   versions.exe REMOTE-FILE      e.g. "HOMEPC\C:\Documents\Reports\2023\Q1 report.txt"
//
// Calls: TavrinEenum.GetFirstVersion (engine code 113) / GetNextVersion.
#include "sample_support.h"

namespace {

std::wstring DateText(const TavrinE_FILETIME& time) {
  const FILETIME file_time{static_cast<DWORD>(time.dwLowDateTime), static_cast<DWORD>(time.dwHighDateTime)};
  SYSTEMTIME utc{};
  if (!FileTimeToSystemTime(&file_time, &utc)) return L"?";
  wchar_t text[32];
  std::swprintf(text, 32, L"%04u-%02u-%02u %02u:%02u:%02u UTC", utc.wYear, utc.wMonth, utc.wDay, utc.wHour,
                utc.wMinute, utc.wSecond);
  return text;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 2) {
    sample::Say(L"usage: versions.exe REMOTE-FILE");
    return 2;
  }
  return sample::Run([&] {
    auto browser = sample::Create<_TavrinEenum>(L"TavrinEUI.TavrinEenum", IID__TavrinEenum);
    sample::Bstr file(argv[1]);
    TavrinE_FILEVERSIONS version{};  // no strings inside: nothing to free
    LONG at = -1;
    sample::Check(browser->GetFirstVersion(file.get(), &version, &at), "GetFirstVersion");
    int count = 0;
    while (at != -1) {
      ++count;
      sample::Say(L"v" + std::to_wstring(version.nVersion) + L"  " + std::to_wstring(version.nFileSize.int64) +
                  L" bytes  written " + DateText(version.ftLastWriteTime));
      sample::Check(browser->GetNextVersion(&version, &at), "GetNextVersion");
    }
    if (count == 0) {
      // No such file, a folder, or no answer: the history is simply empty.
      sample::Say(L"versions: none for " + file.str());
      return 1;
    }
    sample::Say(L"versions: " + std::to_wstring(count) + L" of " + file.str());
    return 0;
  });
}
