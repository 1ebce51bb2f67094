#include "dialogs/login_flow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <initializer_list>
#include <stdexcept>

#include "../operations/session_fixture.h"
#include "fake_views.h"
#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "platform/registry.h"
#include "platform/services.h"
#include "profile/profile_store.h"
#include "profile/user_list.h"
#include "support/install_folder.h"

namespace tavrine::dialogs {
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;
using testing::RequestLine;

constexpr const wchar_t* kTitle = L"TavrinE Online Backup";
constexpr const wchar_t* kEmail = L"bob@example.com";
constexpr unsigned kStopBox = platform::kMbOk | platform::kMbIconStop;
using Boxes = std::vector<testing::RecordedBox>;
using Texts = std::vector<std::wstring>;

class LoginTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    Fresh(L"alice");
  }

  // A new login from scratch: no profiles, no engine runs, nothing shown.
  void Fresh(const wchar_t* user) {
    testing::ResetProfileStore();
    fs::remove(install_.path() / "engine-journal.txt");
    ui_ = testing::RecordingUi();
    clock_.ClearPauses();
    view_ = testing::FakeLoginView();
    view_.user_name = user;
  }
  bool PressLogin() { return procedure_.OnLogin(); }
  std::vector<int> Codes() const { return install_.Codes(); }
  bool Saved(const std::wstring& user) const {
    return !profile::ProfileStore::ForCurrentInstallation().GetForUser(user, L"password").empty();
  }
  // What the engine leaves in the address's profile when it resolves it.
  static void AccountsOfEmail(const std::wstring& list) {
    profile::ProfileStore::ForCurrentInstallation().UpdateForUser(kEmail, L"InteractiveLists",
                                                                  list);
  }
  std::size_t ExchangeFolders() const { return FoldersIn(install_.path() / "Temp"); }

  testing::FakeLoginView view_;
  LoginProcedure procedure_{view_, L""};
};

// A plain login (status 901, login 402, session 403) but for the codes the
// test scripts itself: a code's queue can be opened only once.
EngineScenario Happy(std::initializer_list<int> scripted = {}) {
  auto free = [&](int code) { return std::find(scripted.begin(), scripted.end(), code) == scripted.end(); };
  EngineScenario s;
  if (free(110)) s.On(110).Output(901);
  if (free(116)) s.On(116).Output(402);
  if (free(111)) s.On(111).Output(403);
  return s;
}

// The texts that several rows or tests show.
constexpr const wchar_t* kCannotConnect = L"Unable to connect to the server. Try later.";
constexpr const wchar_t* kBadName = L"Enter your correct TavrinE Username.";
constexpr const wchar_t* kBadEmail = L"Enter a valid email address and try again.";
constexpr const wchar_t* kMaintenance = L"Server is under maintanance";

struct CodeRow {
  const wchar_t* text;                          // nullptr: no box
  std::vector<std::pair<int, int>> call_codes;  // each failing alone, at that call
  const wchar_t* entry = L"alice";              // at 117 always the address
  const wchar_t* title = kTitle;
};

// Every row of the code table, by the text it shows. The address passes 117
// (one account, "bob") before reaching the call.
const CodeRow kCodeRows[] = {
    {kBadName, {{116, -40}, {116, -401}}},
    {kBadEmail, {{116, -401}, {117, -512}, {117, -40}}, kEmail},
    {L"This is a Mac account. The Mac and Windows accounts are not inter-operable.\r\n"
     L"You need to sign up for a windows specific TavrinE account. To proceed, click the 'OK' "
     L"button. This takes you to the sign up page from where you can create an account.\r\n"
     L"Alternately, visit https://www.tavrine.com/tavrine/jsp/tve_prosignup.jsp to sign up for "
     L"an account.",
     {{116, -50}, {117, -50}}},
    {kCannotConnect,  // 0: no result, thrice
     {{116, 0}, {116, -416}, {116, -504}, {116, -508}, {116, -777}, {116, -512}, {110, -404},
      {117, -405}, {117, -12009}, {117, -504}}},
    {kMaintenance, {{116, -511}}, L"alice", L"TavrinE login failure"},
    {kMaintenance, {{111, -511}, {110, -511}}},
    {L"Enter the correct Password and try again.", {{116, -403}}},
    {L"Check your Internet connectivity settings and try again.", {{116, -405}}},
    {L"This account is active on another computer. Do you want to register it on this system?",
     {{116, -417}, {111, -417}}},
    {L"TavrinE has encountered a critical exception. It is possible that your Operating System "
     L"does not support 128-bit SSL encryption or is running on Internet Explorer below 6.  "
     L"Upgrade and try again.",
     {{116, -422}, {111, -422}}},
    {L"TavrinE could not be installed successfully on your computer. Reinstall the application.",
     {{116, -431}}},
    {L"Activate your TavrinE account by clicking on the link provided in the email. If you have "
     L"not received the same, email us at support@tavrine.com",
     {{116, -506}, {110, -506}, {117, -506}}},
    {L"Your TavrinE account is no longer active.", {{116, -507}, {116, -514}}},
    {L"A critical update is being performed on our server. Try later.", {{116, -509}}},
    {L"You can not delete the selected files/folders as a backup operation is in progress for the "
     L"same account. Please try again later.",
     {{116, -513}}},
    {L"Verify the proxy IP address, port number and authentication details and try again.",
     {{116, -12008}, {116, -12010}}},
    {nullptr, {{111, -505}}},
};

TEST_F(LoginTest, EachFailureCodeShowsItsOneMessageAndLeavesTheProfileAlone) {
  for (const auto& row : kCodeRows) {
    for (const auto& [call, code] : row.call_codes) {
      SCOPED_TRACE(::testing::Message() << call << " " << code);
      Fresh(call == 117 ? kEmail : row.entry);
      AccountsOfEmail(L"bob");
      EngineScenario s = Happy({call});
      if (call != 117) s.On(117).Output(402);
      // The engine marks a login in progress in the application folder.
      s.On(call).Info(code).WithFile("../../LoginProgress.txt", "1");
      install_.SetScenario(s);
      foundation::ThreadState().renew_random_permitted = false;
      LoginProcedure procedure(view_, L"");
      EXPECT_FALSE(procedure.OnLogin());
      EXPECT_EQ(ui_.boxes(), (row.text ? Boxes{{row.text, row.title, kStopBox}} : Boxes{}));
      if (row.text) { EXPECT_FALSE(fs::exists(install_.path() / "LoginProgress.txt")); }
      EXPECT_EQ(procedure.result_code(), code);
      // Closing the dialog now keeps the code: the caller learns why.
      procedure.OnCancel();
      EXPECT_EQ(procedure.result_code(), code);
      EXPECT_FALSE(view_.locked);
      EXPECT_FALSE(view_.closed);
      EXPECT_FALSE(Saved(L"alice"));
      EXPECT_FALSE(Saved(L"bob"));
      EXPECT_EQ(profile::CurrentUserName(), L"");
      EXPECT_EQ(ExchangeFolders(), 0u);
      EXPECT_EQ(Codes().back(), call);
      // Network trouble is tried three times, five seconds apart.
      const bool network = code == 0 || code == -416 || code == -405 || code == -12008 ||
                           code == -12009 || code == -12010;
      EXPECT_EQ(clock_.CountPauses(5000), network ? 2u : 0u);
      EXPECT_EQ(view_.focus == L"password+select", call == 116 && code == -403);
      // -505 ends the session quietly but lets an operation renew the number.
      EXPECT_EQ(foundation::ThreadState().renew_random_permitted, code == -505);
    }
  }
}

TEST_F(LoginTest, SuccessSendsTheEnteredAccountAndSavesTheProfile) {
  install_.SetScenario(Happy());
  view_.password = L"s3cret";
  view_.auto_reconnect = true;
  foundation::ThreadState().renew_random_permitted = false;
  ASSERT_TRUE(PressLogin());
  EXPECT_TRUE(view_.closed);
  EXPECT_TRUE(ui_.boxes().empty());
  EXPECT_EQ(Codes(), (std::vector<int>{110, 116, 111}));
  auto runs = install_.Journal();
  // Lines 3 and 4: alice and s3cret, shifted.
  const std::pair<int, const wchar_t*> login_lines[] = {
      {1, L"localhost"}, {2, L"443"}, {3, L"cnkeg"}, {4, L"u5etgv"}, {6, L"MACHINECODEREADONLY"}};
  for (const auto& [n, value] : login_lines) EXPECT_EQ(RequestLine(runs[1], n), value) << n;
  EXPECT_EQ(runs[2].request, runs[1].request) << "the session completes with the login's request";
  EXPECT_EQ(RequestLine(runs[0], 6), L"Does not exist");
  EXPECT_EQ(procedure_.result_code(), 403);
  EXPECT_EQ(ExchangeFolders(), 0u);

  auto store = profile::ProfileStore::ForCurrentInstallation();
  EXPECT_EQ(profile::CurrentUserName(), L"alice");
  EXPECT_EQ(profile::DefaultUserName(), L"alice");
  const std::pair<const wchar_t*, const wchar_t*> saved[] = {
      {L"username", L"alice"}, {L"password", L"s3cret"}, {L"serverip", L"localhost"},
      {L"AutoReconnect", L"1"}, {L"remunamepwd", L"1"},   {L"StatusKey", L"901"},
      {L"useremailidExist", L"0"}};
  for (const auto& [name, value] : saved) EXPECT_EQ(store.GetForUser(L"alice", name), value) << name;
  EXPECT_EQ(profile::ReadUserList(), (std::vector<std::wstring>{L"alice"}));
  EXPECT_TRUE(foundation::ThreadState().renew_random_permitted);
  std::string trace = TraceText();
  EXPECT_EQ(trace.find("s3cret"), std::string::npos) << "secrets never reach the trace log";
  for (const char* line : {"Checking for account status calling CheckDefEncStatus",
                           "Return value from 110 calling : 901", "Entered into ENC_STATUS_DEFAULT",
                           "bEncKeyStausRetVal value : True",
                           "New3 : g_IPAddress : localhost", "New3 : OutgoingPort : 443"}) {
    EXPECT_NE(trace.find(line), std::string::npos) << line;
  }
}

struct InputRow {
  const wchar_t* user;
  const wchar_t* password;
  const wchar_t* text;
  const wchar_t* focus;
};

TEST_F(LoginTest, MissingInputOrANameThatCannotBeAnAccountStopsBeforeAnyEngineRun) {
  const InputRow rows[] = {
      {L"", L"pw", L"Enter your Username/email address.", L"user"},
      {L"   ", L"pw", L"Enter your Username/email address.", L"user"},
      {L"alice", L"", L"Enter your password.", L"password"},
      // Each would be a profile key and a folder outside the account's own.
      {L"bob.", L"pw", kBadName, L"user"},
      {L"con", L"pw", kBadName, L"user"},
      {L"LPT1.txt", L"pw", kBadName, L"user"},
      {L"../alice", L"pw", kBadName, L"user"},
      {L"a\\b", L"pw", kBadName, L"user"},
      {L"a\\b", L"", L"Enter your password.", L"password"},  // the missing input first
      {L"x/y@example.com", L"pw", kBadEmail, L"user"},
  };
  install_.SetScenario(Happy());
  for (const auto& row : rows) {
    ui_ = testing::RecordingUi();
    view_.user_name = row.user;
    view_.password = row.password;
    view_.focus.clear();
    EXPECT_FALSE(PressLogin());
    EXPECT_EQ(ui_.boxes(), (Boxes{{row.text, kTitle, kStopBox}})) << row.user;
    EXPECT_EQ(view_.focus, row.focus);
    EXPECT_EQ(view_.lock_count, 0);
  }
  EXPECT_TRUE(install_.Journal().empty());
  EXPECT_TRUE(profile::ProfileStore::ForCurrentInstallation().Users().empty());
  // No engine call yet: closing the dialog is "Login cancelled".
  procedure_.OnCancel();
  EXPECT_EQ(procedure_.result_code(), kLoginCancelledCode);
}

TEST_F(LoginTest, EmailWithOneAccountLogsThatAccountInStraightAway) {
  EngineScenario s = Happy({117});
  s.On(117).Output(1000).WithFile("DLLOutput1.txt", "not this one\r\n");
  install_.SetScenario(s);
  AccountsOfEmail(L" bob ");
  auto store = profile::ProfileStore::ForCurrentInstallation();
  store.UpdateForUser(L"bob", L"encpassword", L"key1");
  store.UpdateForUser(L"bob", L"StatusKey", L"902");
  view_.user_name = kEmail;
  ASSERT_TRUE(PressLogin());
  EXPECT_FALSE(view_.choice_shown);
  EXPECT_EQ(Codes(), (std::vector<int>{117, 116, 111}));
  auto runs = install_.Journal();
  EXPECT_EQ(RequestLine(runs[0], 3), L"dqdBgzcorng0eqo");  // the address, shifted
  EXPECT_EQ(RequestLine(runs[1], 3), L"dqd");              // bob
  EXPECT_EQ(RequestLine(runs[1], 5), L"mg{3");             // bob's stored key1, shifted
  EXPECT_EQ(store.GetForUser(L"bob", L"encpasswordnew"), L"key1");
  EXPECT_EQ(store.GetForUser(L"bob", L"StatusKey"), L"902");
  EXPECT_EQ(profile::CurrentUserName(), L"bob");
  EXPECT_EQ(store.GetForUser(L"bob", L"useremailid"), kEmail);
  EXPECT_EQ(store.GetForUser(L"bob", L"useremailidExist"), L"1");
  EXPECT_EQ(store.GetForUser(kEmail, L"display"), L"true");
  EXPECT_NE(TraceText().find("Email Id resolved"), std::string::npos);
}

TEST_F(LoginTest, EmailWithSeveralAccountsOffersAChoiceAndLogsInOnTheNextPress) {
  install_.SetScenario(Happy({117}).On(117).Output(402));
  // Names that could not be an account's are left out of the choice.
  AccountsOfEmail(L"bob|con||carol|x/y");
  profile::ProfileStore::ForCurrentInstallation().UpdateForUser(kEmail, L"display", L"false");
  view_.user_name = kEmail;
  EXPECT_FALSE(PressLogin());
  EXPECT_EQ(profile::ProfileStore::ForCurrentInstallation().GetForUser(kEmail, L"display"),
            L"false");
  EXPECT_EQ(view_.choice_names, (std::vector<std::wstring>{L"bob", L"carol"}));
  EXPECT_EQ(ui_.box_texts(), Texts{L"There are multiple accounts associated with this email "
                                   L"address. Choose the username with which you want to login."});
  EXPECT_EQ(Codes(), (std::vector<int>{117, 110}));
  EXPECT_NE(TraceText().find("Return Value from CheckDefEncKeyStatus\r\n"), std::string::npos);
  EXPECT_FALSE(view_.locked);
  EXPECT_FALSE(Saved(L"bob"));

  view_.chosen = L"carol";
  ASSERT_TRUE(PressLogin());
  EXPECT_EQ(Codes(), (std::vector<int>{117, 110, 110, 116, 111}));
  EXPECT_EQ(RequestLine(install_.Journal()[3], 3), L"ectqn");  // carol
  EXPECT_EQ(profile::CurrentUserName(), L"carol");
  EXPECT_NE(TraceText().find("User name changed in combo"), std::string::npos);
}

TEST_F(LoginTest, AFailedCheckAfterSeveralAccountsKeepsTheTextBoxAndResolvesAgain) {
  EngineScenario s = Happy({110, 117});
  s.On(117).Output(402).On(110).Info(-507);
  install_.SetScenario(s);
  AccountsOfEmail(L"bob|carol");
  view_.user_name = kEmail;
  EXPECT_FALSE(PressLogin());
  EXPECT_FALSE(view_.choice_shown);
  EXPECT_FALSE(PressLogin());
  EXPECT_EQ(Codes(), (std::vector<int>{117, 110, 117, 110}));
}

TEST_F(LoginTest, WrongEncryptionPasswordAsksAgainAndRepeatsTheSession) {
  EngineScenario s = Happy({111});
  s.On(111).Info(-404).Then().Info(-404).Then().Output(403);
  install_.SetScenario(s);
  view_.psd_answers = {{true, L"first"}, {true, L"key2"}};
  ASSERT_TRUE(PressLogin());
  EXPECT_EQ(view_.psd_shows, 2);
  EXPECT_EQ(Codes(), (std::vector<int>{110, 116, 111, 111, 111}));
  EXPECT_EQ(RequestLine(install_.Journal()[4], 5), L"mg{4");  // key2, shifted
  EXPECT_EQ(profile::ProfileStore::ForCurrentInstallation().GetForUser(L"alice", L"encpasswordnew"),
            L"key2");
  EXPECT_TRUE(ui_.boxes().empty());
  EXPECT_EQ(TraceText().find("key2"), std::string::npos);
}

// The service keeps answering -404: closing the dialog ends the login quietly,
// and a user who keeps trying is stopped after the last ask.
TEST_F(LoginTest, AnEncryptionPasswordTheServiceNeverTakesEndsTheLogin) {
  const dialogs::KeyChoice closed{false, L""}, given{true, L"guess"};
  const struct {
    std::deque<dialogs::KeyChoice> answers;
    int shows;
    const wchar_t* box;  // nullptr: none
  } rows[] = {
      {{closed}, 1, nullptr},
      {std::deque<dialogs::KeyChoice>(kMaxEncryptionPasswordAsks + 1, given), kMaxEncryptionPasswordAsks,
       L"Incorrect encryption password"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.shows);
    Fresh(L"alice");
    EngineScenario s = Happy({111});
    s.On(111).Info(-404);
    install_.SetScenario(s);
    view_.psd_answers = row.answers;
    EXPECT_FALSE(PressLogin());
    EXPECT_EQ(view_.psd_shows, row.shows);
    EXPECT_EQ(ui_.box_texts(), row.box ? Texts{row.box} : Texts{});
    EXPECT_FALSE(view_.locked);
    EXPECT_FALSE(Saved(L"alice"));
    EXPECT_EQ(ExchangeFolders(), 0u);
  }
}

struct StatusRow {
  int status;
  dialogs::KeyChoice answer;
  std::vector<int> runs;
  const wchar_t* enc_line;  // line 5 of the login request
};

TEST_F(LoginTest, EncryptionStatusChoosesTheDialog) {
  const StatusRow rows[] = {
      {900, {true, L"DEF"}, {110, 116, 111}, L"FGH"},
      {900, {false, L""}, {110}, nullptr},
      {902, {true, L"mykey"}, {110, 116, 111}, L"o{mg{"},
      {902, {false, L""}, {110}, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.status);
    Fresh(L"alice");
    view_.key_option_answers = {row.answer};
    view_.psd_answers = {row.answer};
    EngineScenario s = Happy({110});
    s.On(110).Output(row.status);
    install_.SetScenario(s);
    LoginProcedure procedure(view_, L"alice");
    EXPECT_EQ(procedure.OnLogin(), row.enc_line != nullptr);
    EXPECT_EQ(Codes(), row.runs);
    EXPECT_EQ(view_.key_option_shows, row.status == 900 ? 1 : 0);
    EXPECT_EQ(view_.psd_shows, row.status == 902 ? 1 : 0);
    EXPECT_TRUE(view_.closed || !view_.locked);  // a failed login leaves the dialog usable
    if (row.enc_line) {
      EXPECT_EQ(RequestLine(install_.Journal()[1], 5), row.enc_line);
    }
  }
}

TEST_F(LoginTest, MacAccountOffersTheSignUpPageAndTriesTheBrowserOnceMore) {
  EngineScenario s = Happy({116});
  s.On(116).Info(-50);
  install_.SetScenario(s);
  view_.browser_answers = {2, 2, 2};
  EXPECT_FALSE(PressLogin());
  EXPECT_EQ(ui_.boxes().size(), 1u);  // its text: the code table's -50 rows
  EXPECT_EQ(view_.opened_pages.size(), 2u);
  EXPECT_EQ(view_.opened_pages[0], foundation::kFixedSignupLink);

  ui_ = testing::RecordingUi();
  ui_.set_answer(0);  // the box could not be shown: no OK, no page
  view_.opened_pages.clear();
  EXPECT_FALSE(PressLogin());
  EXPECT_TRUE(view_.opened_pages.empty());
}

TEST_F(LoginTest, AChangedUserNameTakesThatUsersRememberSetting) {
  install_.SetScenario(Happy());
  auto store = profile::ProfileStore::ForCurrentInstallation();
  store.UpdateForUser(L"alice", L"remunamepwd", L"0");
  store.UpdateForUser(L"alice", L"random", L"12345");
  store.UpdateForUser(L"alice", L"port", L"8443");
  LoginProcedure procedure(view_, L"someone");
  EXPECT_TRUE(procedure.OnLogin());
  EXPECT_FALSE(view_.remember);
  EXPECT_EQ(RequestLine(install_.Journal()[0], 6), L"12345");
  for (const auto& run : install_.Journal()) EXPECT_EQ(RequestLine(run, 2), L"8443") << "the account's port";
  EXPECT_NE(TraceText().find("User name changed"), std::string::npos);
}

TEST_F(LoginTest, AProxySetBeforeTheFirstLoginIsUsedAndSavedWithTheAccount) {
  install_.SetScenario(Happy());
  testing::FakeProxyView proxy_view;
  proxy_view.auth = true;
  proxy_view.user = L"puser";
  proxy_view.password = L"ppass";
  auto registry = platform::OpenCurrentUserRegistry(install_.folder() + L"/hkcu.ini");
  ProxyPresenter proxy(
      proxy_view,
      [this](const std::wstring& n, const std::wstring& v) { procedure_.SetProxyValue(n, v); },
      *registry);
  ASSERT_TRUE(proxy.OnApply());
  EXPECT_TRUE(ui_.boxes().empty());
  auto store = profile::ProfileStore::ForCurrentInstallation();
  EXPECT_TRUE(store.Users().empty()) << "no account yet: the values wait for the login";
  EXPECT_EQ(procedure_.ProxyValue(L"ProxyName"), L"proxy.local");

  ASSERT_TRUE(PressLogin());
  // Lines 7 to 11: a proxy, of the HTTP kind, its address, port and user.
  const wchar_t* proxy_lines[] = {L"1", L"1", L"proxy.local", L"8080", L"puser"};
  for (const auto& run : install_.Journal()) {
    for (int n = 7; n <= 11; ++n) EXPECT_EQ(RequestLine(run, n), proxy_lines[n - 7]) << n;
  }
  const std::pair<const wchar_t*, const wchar_t*> saved[] = {
      {L"Proxyset", L"1"},       {L"proxytypehttp", L"1"},
      {L"proxytypesocks", L"0"}, {L"ProxyName", L"proxy.local"},
      {L"ProxyPort", L"8080"},   {L"ProxyAuthOn", L"1"},
      {L"ProxyUser", L"puser"},  {L"ProxyPass", L"ppass"}};
  for (const auto& [name, value] : saved)
    EXPECT_EQ(store.GetForUser(L"alice", name), value) << name;

  // Once the account has a profile, the dialog writes to it at once.
  LoginProcedure next(view_, L"alice");
  next.SetProxyValue(L"ProxyPort", L"3128");
  EXPECT_EQ(store.GetForUser(L"alice", L"ProxyPort"), L"3128");
  EXPECT_EQ(LoginProcedure(view_, L"alice").ProxyValue(L"ProxyName"), L"proxy.local");
}

// Boxes are recorded, but pumping the messages fails as a broken host would.
class ThrowingPumpUi : public testing::RecordingUi {
 public:
  void PumpMessages() override { throw std::runtime_error("host gone"); }
};

TEST_F(LoginTest, AnErrorInTheMiddleOfACallStillRemovesItsExchangeFolder) {
  EngineScenario s = Happy({116});
  s.On(116).Info(-416);  // retried: the pump before the pause throws
  install_.SetScenario(s);
  ThrowingPumpUi ui;
  platform::ScopedServices seams({.clock = &clock_, .ui = &ui, .module_folder = {}});
  EXPECT_FALSE(PressLogin());
  EXPECT_EQ(ExchangeFolders(), 0u);
  EXPECT_EQ(ui.box_texts(), Texts{kCannotConnect});
  EXPECT_FALSE(view_.locked);
  EXPECT_NE(TraceText().find("[EXCEPTION] frmLogin :: Login_Click() : host gone"),
            std::string::npos);
}

TEST_F(LoginTest, AProfileThatCannotBeMadeCurrentFailsTheLogin) {
  install_.SetScenario(Happy());
  // An installation name of separators only leaves no profile store to save to.
  install_.WriteFile(L"Configuration.ini", testing::StandardConfiguration(
                                               "EngineTimeoutSeconds=20\r\n", "English", "\\"));
  foundation::ThreadState().renew_random_permitted = false;
  EXPECT_FALSE(PressLogin());
  EXPECT_EQ(Codes(), (std::vector<int>{110, 116, 111}));
  EXPECT_FALSE(procedure_.logged_in());
  EXPECT_FALSE(view_.closed);
  EXPECT_FALSE(view_.locked);
  EXPECT_EQ(ui_.box_texts(), Texts{kCannotConnect});
  EXPECT_FALSE(foundation::ThreadState().renew_random_permitted);
}

}  // namespace
}  // namespace tavrine::dialogs
