// A whole session against the reference engine with a distinctive password
// and encryption key: neither may appear in plain text in any file the run
// leaves (trace log, journal, exchange folders, profile store) nor in a
// message shown. The request files carry them shifted, which is expected.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "dialogs/login_flow.h"
#include "fake_views.h"
#include "hardening_fixture.h"
#include "operations/cls_api_interface.h"
#include "platform/code_page.h"
#include "platform/path.h"
#include "profile/profile_store.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

const std::wstring kPassword = L"Qv9#Pässwort-7781";
const std::wstring kKey = L"Kx4$Schlüssel-5523";

// Every spelling a file could hold the secret in: UTF-8, ANSI, UTF-16LE, and
// the journal's hex of those bytes.
std::vector<std::string> Spellings(const std::wstring& secret) {
  std::vector<std::string> forms = {platform::WideToUtf8(secret), platform::WideToAnsi(secret),
                                    Utf16LeFile(secret).substr(2)};
  forms.push_back(Hex(forms[0]));
  forms.push_back(Hex(forms[2]));
  return forms;
}

using Secrets = HardeningSession;

TEST_F(Secrets, NoFileOrMessageOfAWholeSessionHoldsThePasswordOrKey) {
  EngineScenario story;
  story.On(110).Output(901)
      .On(116).Output(402).WithFile("DLLOutput1.txt", "127.0.0.1\r\n443\r\n")
      .On(111).Output(403)
      .On(115).Info(-12009, "Server is busy").Then().Output(0)
      .On(114).Output(402).WithFile("Quota.txt", "10\r\n20\r\n")
      .On(6).Info(-403, "password changed")
      .On(113).Info(-422);
  Script(story);

  FakeLoginView view;
  view.user_name = L"alice";
  view.password = kPassword;
  dialogs::LoginProcedure login(view, L"");
  login.OnLogin();
  profile::UpdateUserProfile(L"encpasswordnew", kKey);

  operations::clsAPI_Interface api;
  api.API_AutoReconnect();
  api.API_REMOTE(CallerFolder(L"list"));
  double max_size = 0, used = 0;
  api.API_GetQuota(max_size, used);
  api.API_DELETE_REMOTE_FILE(DeleteList());
  std::wstring folder;
  api.API_GETVERSIONS(L"C:\\a.txt", folder);
  ASSERT_GE(install_.Journal().size(), 6u) << "the story did not reach the engine";
  ASSERT_EQ(profile::GetUserProfile(L"password"), kPassword) << "the login did not store the password";

  std::size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(install_.path())) {
    if (!entry.is_regular_file() || entry.path().extension() == ".exe") continue;
    ++files;
    const std::string bytes = ReadFileBytes(entry.path());
    for (const std::wstring& secret : {kPassword, kKey}) {
      for (const std::string& form : Spellings(secret)) {
        EXPECT_EQ(bytes.find(form), std::string::npos)
            << entry.path() << " holds " << platform::WideToUtf8(secret);
      }
    }
  }
  EXPECT_GT(files, 3u);
  for (const auto& box : ui_.boxes()) {
    EXPECT_EQ(box.text.find(kPassword), std::wstring::npos);
    EXPECT_EQ(box.text.find(kKey), std::wstring::npos);
  }
}

}  // namespace
}  // namespace tavrine::testing
