// Restore a remote file or folder (its latest versions) into a local folder.
//
//   restore.exe REMOTE-PATH DESTINATION-FOLDER EXCHANGE-FOLDER
//
// The exchange folder is the caller's: an empty folder that lives until the
// restore has ended (cancel.txt put there stops the engine's run).
//
// Calls: CRestore.W_Restore (starts engine code 123, returns its process
//        handle at once), then the caller waits on the handle and reads the
//        answer with clsClient.ReadDLLOutputFileTempFd.
#include "sample_support.h"

int wmain(int argc, wchar_t** argv) {
  if (argc != 4) {
    sample::Say(L"usage: restore.exe REMOTE-PATH DESTINATION-FOLDER EXCHANGE-FOLDER");
    return 2;
  }
  return sample::Run([&] {
    CreateDirectoryW(argv[2], nullptr);
    CreateDirectoryW(argv[3], nullptr);
    auto restore = sample::Create<_CRestore>(L"TavrinEUI.CRestore", IID__CRestore);
    sample::Bstr destination(argv[2]), remote(argv[1]), exchange(argv[3]);
    LONG handle_value = -1;
    sample::Check(restore->W_Restore(destination.get(), remote.get(), exchange.get(), &handle_value), "W_Restore");
    if (handle_value == -1) {
      // No exchange folder, or the engine could not be started (see the trace log).
      sample::Say(L"restore: not started");
      return 1;
    }
    // The handle is a process handle of this process, now the caller's: wait, then close it.
    sample::Handle engine(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(handle_value)));
    const DWORD waited = WaitForSingleObject(engine.get(), 10 * 60 * 1000);
    if (waited != WAIT_OBJECT_0) {
      sample::Say(L"restore: the engine did not end in 10 minutes");
      return 1;
    }

    auto client = sample::Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    VARIANT_BOOL answered = VARIANT_FALSE;
    sample::Bstr description(L"");
    double value = 0;
    sample::Check(client->ReadDLLOutputFileTempFd(exchange.get(), &answered, description.InOut(), &value),
                  "ReadDLLOutputFileTempFd");
    const LONG code = static_cast<LONG>(value);
    if (code != 402) {
      // -404 wrong encryption password, -408 nothing there, -1001 / -1002 the
      // destination cannot be written / is too long, 0 no answer at all.
      auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);
      sample::Say(L"restore: " + sample::Explain(commands.get(), code));
      return 1;
    }
    sample::Say(L"restore: " + remote.str() + L" restored into " + destination.str());
    return 0;
  });
}
