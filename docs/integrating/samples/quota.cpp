// Read the quota: the account's size limit and the bytes its stored versions use.
//
//   quota.exe
//
// Calls: UICommands.W_GetQuota_Command (engine code 114; also keeps the
//        profile value "freeuser" in step), clsClient.GetUserProfile("freeuser").
#include "sample_support.h"

int wmain() {
  return sample::Run([] {
    auto commands = sample::Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);
    // Both figures are [in, out]: poison them, so that "nothing came back" shows.
    double max_size = -2, used = -2;
    sample::Variant result;
    sample::Check(commands->W_GetQuota_Command(&max_size, &used, result.get()), "W_GetQuota_Command");
    const LONG code = result.AsLong();
    if (code != 0 || used == -2) {
      // -1: no exchange folder could be made. Figures left untouched: the
      // service failed (-416, -405, -12008..-12010 or -403), and the library
      // has already shown the user a box saying so.
      sample::Say(L"quota: not read (result " + std::to_wstring(code) + L"); see the trace log");
      return 1;
    }
    if (used < 0 || max_size <= 0) {
      // The run ended without Quota.txt: the engine is missing, crashed or timed out.
      sample::Say(L"quota: the engine sent no figures; see the trace log");
      return 1;
    }
    auto client = sample::Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    sample::Bstr name(L"freeuser"), free_plan;
    sample::Check(client->GetUserProfile(name.get(), free_plan.Out()), "GetUserProfile");
    sample::Say(L"quota: used " + std::to_wstring(static_cast<long long>(used)) + L" of " +
                std::to_wstring(static_cast<long long>(max_size)) + L" bytes" +
                (free_plan.str() == L"1" ? L", free plan" : L""));
    return 0;
  });
}
