// The windows worked with the keyboard alone: keys posted to the focused
// control go through the modal loop's dialog manager as typed keys do.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <mutex>
#include <utility>
#include <vector>

#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "contract/ui_commands.h"
#include "window_driver.h"

namespace tavrine::dialogs::win32 {
namespace {

using testing::EngineScenario;

// The quota read when the window opens, then again with Refresh by its access
// key; a failed read shows its box and keeps the figures. Keys only.
TEST_P(DialogWindows, SessionWindowShowsTheQuotaAndRefreshesItFromTheKeyboard) {
  profile::SetCurrentUserName(L"alice");
  profile::UpdateUserProfile(L"username", L"alice");
  profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
  install_.SetScenario(EngineScenario()
                           .On(114).Output(0).WithFile("Quota.txt", "1073741824\r\n2147483648\r\n")
                           .Then().Output(0).WithFile("Quota.txt", "1181116006\r\n2147483648\r\n")
                           .Then().Info(-416));
  std::wstring user, server, opened, refreshed, after_failure, read_at, box;
  LRESULT opened_bar = -1, refreshed_bar = -1;
  bool refresh_done = false;
  Driver driver(std::wstring(kCaption) + Say(L" - Session", L" - Sitzung", L" - Sesión"), [&](HWND window) {
    user = Read(window, IDC_txtSessionUser);
    server = Read(window, IDC_txtSessionServer);
    opened = Read(window, IDC_txtSessionQuota);
    opened_bar = SendDlgItemMessageW(window, IDC_pbSessionQuota, PBM_GETPOS, 0, 0);
    PressAccessKey(window, IDC_cmdRefresh);
    refresh_done = testing::WaitUntil([&] { return Read(window, IDC_txtSessionQuota) != opened; }, 15000);
    refreshed = Read(window, IDC_txtSessionQuota);
    refreshed_bar = SendDlgItemMessageW(window, IDC_pbSessionQuota, PBM_GETPOS, 0, 0);
    read_at = Read(window, IDC_txtSessionQuotaTime);
    Shoot(window, L"session");
    // Refresh has the focus now: Space presses it.
    if (!WaitForFocus(window, IDC_cmdRefresh)) return;
    PostKey(window, VK_SPACE);
    box = AnswerBoxWithEnter();
    after_failure = Read(window, IDC_txtSessionQuota);
    if (!WaitForFocus(window, IDC_cmdRefresh)) return;
    PostKey(window, VK_ESCAPE);
  });
  std::int32_t owner = 0;
  EXPECT_EQ(contract::UICommands().UI_Session_Command(owner), 1);
  EXPECT_TRUE(driver.done());
  EXPECT_EQ(user, L"alice");
  EXPECT_EQ(server, L"127.0.0.1");
  EXPECT_EQ(opened, Say(L"1.0 GB of 2.0 GB used", L"1,0 GB von 2,0 GB belegt", L"1,0 GB de 2,0 GB usados"));
  EXPECT_EQ(opened_bar, 500);
  EXPECT_TRUE(refresh_done);
  EXPECT_EQ(refreshed, Say(L"1.1 GB of 2.0 GB used", L"1,1 GB von 2,0 GB belegt", L"1,1 GB de 2,0 GB usados"));
  EXPECT_EQ(refreshed_bar, 550);
  const std::wstring read_prefix = Say(L"Read at ", L"Gelesen um ", L"Leído a las ");
  EXPECT_EQ(read_at.substr(0, read_prefix.size()), read_prefix);
  EXPECT_EQ(read_at.size(), read_prefix.size() + 5) << "HH:MM";
  EXPECT_NE(box, L"<no box>");
  EXPECT_FALSE(box.empty());
  EXPECT_EQ(after_failure, refreshed);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{114, 114, 114, 114, 114, 114}));
}

// Every control the login needs is reached with Tab alone, the links too; an
// access key moves to its field, Enter logs in, Enter and Space follow a link,
// and Escape after a failed login hands back the failure's code.
TEST_P(DialogWindows, LoginDialogWorksFromTheKeyboardAlone) {
  install_.SetScenario(EngineScenario().On(110).Output(901).On(116).Info(-403));
  std::mutex opened_mutex;
  std::vector<std::wstring> opened;
  ScopedShellOpener shell([&](const std::wstring& target, const std::wstring&) {
    std::lock_guard<std::mutex> lock(opened_mutex);
    opened.push_back(target);
    return std::intptr_t{42};
  });
  auto opened_count = [&] {
    std::lock_guard<std::mutex> lock(opened_mutex);
    return opened.size();
  };
  std::vector<int> tab_order;
  bool typed = false, followed = false, box_shown = false;
  std::wstring box;
  Driver driver(std::wstring(kCaption) + L" - Login", [&](HWND window) {
    if (!WaitForFocus(window, IDC_txtUserName)) return;
    do {
      tab_order.push_back(FocusedId(window));
    } while (tab_order.size() < 30 && Tab(window) && FocusedId(window) != tab_order.front());
    // Enter on one link, Space on another.
    for (const auto& [link, key] : {std::pair{IDC_picForgotPassword, VK_RETURN}, std::pair{IDC_picFirewall, VK_SPACE}}) {
      const std::size_t before = opened_count();
      for (int tabs = 0; tabs < 30 && FocusedId(window) != link && Tab(window); ++tabs) {
      }
      if (FocusedId(window) != link) return;
      if (link == IDC_picForgotPassword) Shoot(window, L"login_link_focus");
      PostKey(window, key);
      followed = testing::WaitUntil([&] { return opened_count() == before + 1; }, 5000);
      if (!followed) return;
    }
    PressAccessKey(window, IDC_lblUserName);
    typed = WaitForFocus(window, IDC_txtUserName) && TypeKeys(window, L"alice", L"alice");
    PressAccessKey(window, IDC_lblPassword);
    typed = typed && WaitForFocus(window, IDC_txtPassword) && TypeKeys(window, L"wrong", L"wrong");
    PressAccessKey(window, IDC_lblServer);
    typed = typed && WaitForFocus(window, IDC_schipaddress);
    // A field reached by its access key has its text selected: typing replaces it.
    typed = typed && TypeKeys(window, L"localhost", L"localhost");
    if (!typed) return;
    PostKey(window, VK_RETURN);
    box = AnswerBoxWithEnter();
    box_shown = true;
    // The password field has the focus again, its text selected.
    if (!WaitForFocus(window, IDC_txtPassword)) return;
    PostKey(window, VK_ESCAPE);
  });
  std::int32_t owner = 0;
  EXPECT_EQ(contract::UICommands().UI_Login_Command(owner), -403);
  EXPECT_TRUE(driver.done());
  const std::vector<int> expected_order = {
      IDC_txtUserName, IDC_txtPassword,      IDC_schipaddress,      IDC_remunamepwd,
      IDC_auto_Reconnect, IDC_Login,         IDC_Cancel,            IDC_advanced,
      IDC_picNewUserReg, IDC_picForgotPassword, IDC_picUpgrade,     IDC_picFirewall};
  EXPECT_EQ(tab_order, expected_order);
  EXPECT_TRUE(followed);
  EXPECT_EQ(opened, (std::vector<std::wstring>{
                        L"https://www.tavrine.com/forgot" + Say(L"", L"&country=DE&lang=de", L"&country=ES&lang=es"),
                        L"https://www.tavrine.com/firewall" + Say(L"", L"&country=DE&lang=de", L"&country=ES&lang=es")}));
  EXPECT_TRUE(typed);
  EXPECT_TRUE(box_shown);
  EXPECT_EQ(box, Say(L"Enter the correct Password and try again.",
                     L"Geben Sie das richtige Kennwort ein und versuchen Sie es erneut.",
                     L"Escriba la contraseña correcta e inténtelo de nuevo."));
  EXPECT_EQ(install_.Codes(), (std::vector<int>{110, 116}));
  const auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(testing::RequestLine(runs[1], 3), L"cnkeg") << "alice, shifted";
}

// The proxy dialog by keys only: its dependent fields follow their check
// boxes, and Apply writes exactly what it always wrote.
TEST_P(DialogWindows, ProxyDialogWorksFromTheKeyboardAndEnablesFieldsByTheirCheckBox) {
  std::mutex mutex;
  std::vector<std::pair<std::wstring, std::wstring>> written;
  auto written_count = [&] {
    std::lock_guard<std::mutex> lock(mutex);
    return written.size();
  };
  ProxyDialog dialog([](const std::wstring& name) { return name == L"Proxyset" ? L"0" : L""; },
                     [&](const std::wstring& name, const std::wstring& value) {
                       std::lock_guard<std::mutex> lock(mutex);
                       written.emplace_back(name, value);
                     });
  auto enabled = [](HWND window, std::initializer_list<int> ids) {
    std::vector<bool> states;
    for (int id : ids) states.push_back(IsWindowEnabled(GetDlgItem(window, id)) != FALSE);
    return states;
  };
  const std::initializer_list<int> kProxyFields = {IDC_httpopt, IDC_socksopt, IDC_IPText, IDC_ProxyPort};
  const std::initializer_list<int> kAuthFields = {IDC_sUsername, IDC_sPassword};
  std::vector<bool> at_start_proxy, at_start_auth, proxy_on, auth_on, proxy_off;
  bool steps = false;
  Driver driver(ProxyTitle(), [&](HWND window) {
    if (!WaitForFocus(window, IDC_Proxyenabled)) return;
    at_start_proxy = enabled(window, kProxyFields);
    at_start_auth = enabled(window, kAuthFields);
    // The window's thread enables them one after the other: wait for all.
    auto all = [&](std::initializer_list<int> ids, bool state) {
      return testing::WaitUntil([&] { return enabled(window, ids) == std::vector<bool>(ids.size(), state); }, 5000);
    };
    PostKey(window, VK_SPACE);  // the check box has the focus
    all(kProxyFields, true);
    proxy_on = enabled(window, kProxyFields);
    PressAccessKey(window, IDC_lblIPText);
    if (!WaitForFocus(window, IDC_IPText) || !TypeKeys(window, L"proxy.example", L"proxy.example")) return;
    PressAccessKey(window, IDC_lblProxyPort);
    if (!WaitForFocus(window, IDC_ProxyPort) || !TypeKeys(window, L"31x28", L"3128")) return;
    PressAccessKey(window, IDC_ProxyAuth);
    all(kAuthFields, true);
    auth_on = enabled(window, kAuthFields);
    PressAccessKey(window, IDC_lblsUsername);
    if (!WaitForFocus(window, IDC_sUsername) || !TypeKeys(window, L"bob", L"bob")) return;
    PressAccessKey(window, IDC_lblsPassword);
    if (!WaitForFocus(window, IDC_sPassword) || !TypeKeys(window, L"pw", L"pw")) return;
    PostKey(window, VK_RETURN);  // Apply, the default button
    if (!testing::WaitUntil([&] { return written_count() == 8; }, 5000)) return;
    PressAccessKey(window, IDC_Proxyenabled);
    all(kProxyFields, false);
    proxy_off = enabled(window, kProxyFields);
    PostKey(window, VK_RETURN);
    if (!testing::WaitUntil([&] { return written_count() == 16; }, 5000)) return;
    steps = true;
    PostKey(window, VK_ESCAPE);
  });
  dialog.Show(nullptr);
  EXPECT_TRUE(driver.done());
  EXPECT_TRUE(steps);
  EXPECT_EQ(at_start_proxy, std::vector<bool>(4, false));
  EXPECT_EQ(at_start_auth, std::vector<bool>(2, false));
  EXPECT_EQ(proxy_on, std::vector<bool>(4, true));
  EXPECT_EQ(auth_on, std::vector<bool>(2, true));
  EXPECT_EQ(proxy_off, std::vector<bool>(4, false));
  const std::vector<std::pair<std::wstring, std::wstring>> applied = {
      {L"Proxyset", L"1"},       {L"proxytypehttp", L"1"}, {L"proxytypesocks", L"0"},
      {L"ProxyName", L"proxy.example"}, {L"ProxyPort", L"3128"}, {L"ProxyAuthOn", L"1"},
      {L"ProxyUser", L"bob"},    {L"ProxyPass", L"pw"}};
  std::vector<std::pair<std::wstring, std::wstring>> twice = applied;
  twice.insert(twice.end(), applied.begin(), applied.end());
  twice[8].second = L"0";  // the second Apply, with the proxy off
  EXPECT_EQ(written, twice);
}

}  // namespace
}  // namespace tavrine::dialogs::win32
