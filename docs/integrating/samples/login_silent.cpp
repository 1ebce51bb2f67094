// Log in silently: the saved profile of the current user is sent to the
// service again (engine code 116), with no window.
//
//   login_silent.exe                      uses the profile a dialog login saved
//   login_silent.exe USER PASSWORD [KEY]  saves these first, as a first login would
//
// Calls: clsClient.UpdateUserProfile (only with arguments),
//        clsAPI_Interface.API_AutoReconnect, clsClient.GetCurrentUser,
//        UICommands.W_GetMessageString / W_GetMessageInfo for a failure.
#include "sample_support.h"

int wmain(int argc, wchar_t** argv) {
  return sample::Run([&] {
    auto client = sample::Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);

    if (argc >= 3) {
      // "CurrentUser" chooses whose values the other names read and write;
      // "password" and "encpasswordnew" are kept protected by the library.
      auto save = [&](const wchar_t* name, const std::wstring& value) {
        sample::Bstr key(name), data(value);
        sample::Check(client->UpdateUserProfile(key.get(), data.get()), "UpdateUserProfile");
      };
      save(L"CurrentUser", argv[1]);
      save(L"Default User name", argv[1]);
      save(L"username", argv[1]);
      save(L"password", argv[2]);
      if (argc >= 4) save(L"encpasswordnew", argv[3]);
    }

    auto api = sample::Create<_clsAPI_Interface>(L"TavrinEUI.clsAPI_Interface", IID__clsAPI_Interface);
    LONG code = 0;
    // Blocks while the engine runs; transient answers are retried inside
    // (up to 10 runs, 2 s apart).
    sample::Check(api->API_AutoReconnect(&code), "API_AutoReconnect");

    sample::Bstr user;
    sample::Check(client->GetCurrentUser(user.Out()), "GetCurrentUser");
    switch (code) {
      case 402:  // logged in; the server address and port the engine chose are saved
        sample::Say(L"login_silent: logged in as " + user.str());
        return 0;
      case -403:
      case -400:  // the password was changed on the web site: ask for the new one
      case -401:  // no such user
      case -404:  // wrong encryption password
        sample::Say(L"login_silent: show the login dialog: " + sample::Explain(commands.get(), code));
        return 1;
      case 0:  // no answer in 10 runs: engine missing, timed out or crashed (see the trace log)
      case -1:  // no exchange folder could be made
        sample::Say(L"login_silent: no answer from the engine (" + std::to_wstring(code) + L"); see the trace log");
        return 1;
      default:  // -416, -405, -12008..-12010 after the retries, -506, -507, -509, -511, ...
        sample::Say(L"login_silent: " + sample::Explain(commands.get(), code));
        return 1;
    }
  });
}
