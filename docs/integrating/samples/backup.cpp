// Back up files the user dropped onto the remote view, with the scheduled
// backup of the account paused while it runs.
//
//   backup.exe EXCHANGE-FOLDER LOCAL-FILE-OR-FOLDER...   (a folder ends in "\")
//
// Calls: clsClient.GetCurrentUser, CBackup.IsScheduleBackupRunning,
//        CBackup.W_BackupInit (pauses the scheduled backup, fetches the listing,
//        runs the compare program), CBackup.W_DoBackup (starts the upload,
//        engine code 110), clsClient.GetUserProfile("TavrinEClientPID"), a
//        wait on that handle, clsClient.ReadDLLOutputFileTempFd,
//        CBackup.W_BackupExitInstance (resumes the scheduled backup).
#include "sample_support.h"

namespace {

constexpr LONG kCancelled = 401;

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 3) {
    sample::Say(L"usage: backup.exe EXCHANGE-FOLDER LOCAL-FILE-OR-FOLDER...");
    return 2;
  }
  return sample::Run([&] {
    const std::wstring exchange_path = argv[1];
    CreateDirectoryW(exchange_path.c_str(), nullptr);
    // The dropped items: one local path a line; the user may cancel at any
    // time by creating cancel.txt in the same folder.
    if (!sample::WriteUtf16Lines(exchange_path + L"\\InputList.txt", std::vector<std::wstring>(argv + 2, argv + argc))) {
      sample::Say(L"backup: InputList.txt could not be written");
      return 2;
    }

    auto client = sample::Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    auto backup = sample::Create<_CBackup>(L"TavrinEUI.CBackup", IID__CBackup);
    sample::Bstr user;
    sample::Check(client->GetCurrentUser(user.Out()), "GetCurrentUser");
    auto schedule_running = [&] {
      VARIANT_BOOL running = VARIANT_FALSE;
      sample::Check(backup->IsScheduleBackupRunning(user.get(), &running), "IsScheduleBackupRunning");
      return running != VARIANT_FALSE;
    };
    sample::Say(L"scheduled backup running before: " + std::wstring(schedule_running() ? L"yes" : L"no"));

    // The owner window for anything the library shows; 0 when there is none.
    sample::Bstr exchange(exchange_path);
    LONG compared = -1;
    sample::Check(backup->W_BackupInit(0, exchange.get(), &compared), "W_BackupInit");
    LONG code = compared;
    if (compared == 1) {  // the compare found items to upload
      LONG ignored = 0, started = -1;
      sample::Check(backup->W_DoBackup(&ignored, &started), "W_DoBackup");
      code = started == 1 ? 0 : started;
      if (started == 1) {
        // The upload engine's process handle, recorded by W_DoBackup: wait for
        // it, close it, read its answer from the exchange folder.
        sample::Bstr name(L"TavrinEClientPID"), pid;
        sample::Check(client->GetUserProfile(name.get(), pid.Out()), "GetUserProfile");
        sample::Handle engine(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(std::wcstoll(pid.str().c_str(), nullptr, 10))));
        if (WaitForSingleObject(engine.get(), 10 * 60 * 1000) == WAIT_OBJECT_0) {
          VARIANT_BOOL answered = VARIANT_FALSE;
          sample::Bstr description(L"");
          double value = 0;
          sample::Check(client->ReadDLLOutputFileTempFd(exchange.get(), &answered, description.InOut(), &value),
                        "ReadDLLOutputFileTempFd");
          code = static_cast<LONG>(value);
        }
      }
    }
    // Always, whatever happened above: the scheduled backup may run again.
    LONG exited = 0;
    sample::Check(backup->W_BackupExitInstance(&exited), "W_BackupExitInstance");
    sample::Say(L"scheduled backup running after: " + std::wstring(schedule_running() ? L"yes" : L"no"));

    auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);
    switch (code) {
      case 402:
        sample::Say(L"backup: uploaded");
        return 0;
      case 0:
        sample::Say(L"backup: nothing to upload (or no answer from the upload)");
        return 0;
      case kCancelled:
        sample::Say(L"backup: cancelled by the user");
        return 1;
      default:  // -1 no list / compare failed; -404, -406, -410, listing failures
        sample::Say(L"backup: " + sample::Explain(commands.get(), code));
        return 1;
    }
  });
}
