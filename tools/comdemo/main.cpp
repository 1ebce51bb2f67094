// tavrine-com-demo: the demo's story through the registered TavrinEUI.dll.
//   tavrine-com-demo story WORK-FOLDER VAULT-FOLDER
//   tavrine-com-demo screenshot-login FILE.png [WINDOW-TITLE]
#include <windows.h>
#include <objbase.h>

#include <string>

#include "com/com_ptr.h"
#include "com_story.h"
#include "console.h"

namespace {

int Usage() {
  tavrine::comdemo::Say(L"usage: tavrine-com-demo story WORK-FOLDER VAULT-FOLDER\n"
                        L"       tavrine-com-demo screenshot-login FILE.png [WINDOW-TITLE]");
  return 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) return Usage();
  const std::wstring command = argv[1];
  tavrine::com::ComApartment apartment;  // for as long as main runs
  if (!apartment.ok()) {
    tavrine::comdemo::Say(L"CoInitializeEx failed");
    return 2;
  }
  if (command == L"story" && argc == 4) return tavrine::comdemo::RunStory(argv[2], argv[3]) ? 0 : 2;
  if (command == L"screenshot-login" && argc <= 4) {
    const std::wstring title = argc == 4 ? argv[3] : L"TavrinE Online Backup - Login";
    return tavrine::comdemo::ScreenshotLogin(argv[2], title) ? 0 : 2;
  }
  return Usage();
}
