// Delete remote files and folders.
//
//   delete.exe LIST-FILE REMOTE-PATH...
//
// The list is the caller's file, one remote path a line (UTF-16 with a
// byte-order mark); the library copies it into its exchange folder.
//
// Calls: UICommands.W_DeleteRemoteFiles (engine code 6; the library shows
//        its own box for connection failures, -408 and -511), then
//        TavrinEenum.TavrinEInit to list again.
#include "sample_support.h"

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) {
    sample::Say(L"usage: delete.exe LIST-FILE REMOTE-PATH...");
    return 2;
  }
  return sample::Run([&] {
    std::vector<std::wstring> items(argv + 2, argv + argc);
    if (!sample::WriteUtf16Lines(argv[1], items)) {
      sample::Say(L"delete: the list could not be written");
      return 2;
    }
    auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);
    sample::Bstr list(argv[1]);
    LONG result = 0;
    sample::Check(commands->W_DeleteRemoteFiles(list.get(), &result), "W_DeleteRemoteFiles");
    if (result != 1) {
      // -1: no list file or no answer; -423: a line named nothing (the others
      // are deleted); 401: the computer must be registered again.
      sample::Say(L"delete: " + sample::Explain(commands.get(), result));
      return 1;
    }
    // The listing the shell side shows is now old: fetch it again.
    auto browser = sample::Create<_TavrinEenum>(L"TavrinEUI.TavrinEenum", IID__TavrinEenum);
    short loaded = 0;
    sample::Check(browser->TavrinEInit(&loaded), "TavrinEInit");
    sample::Say(L"delete: " + std::to_wstring(items.size()) + L" item(s) deleted; listing " +
                (loaded ? L"fetched again" : L"NOT fetched again"));
    return 0;
  });
}
