#include "dialogs/proxy_settings.h"

#include <gtest/gtest.h>

#include <map>

#include "fake_views.h"
#include "foundation/configuration.h"
#include "support/install_folder.h"

namespace tavrine::dialogs {
namespace {

constexpr const wchar_t* kTitle = L"TavrinE Online Backup";
using Boxes = std::vector<testing::RecordedBox>;

class ProxyTest : public ::testing::Test {
 protected:
  ProxyTest() : registry_(platform::OpenCurrentUserRegistry(install_.wpath() + L"/hkcu.ini")) {
    install_.WriteStandardConfiguration();
    foundation::LoadConfigurations();
  }
  ProxyPresenter Presenter() {
    return ProxyPresenter(view_, [this](const std::wstring& n, const std::wstring& v) { written_[n] = v; },
                          *registry_);
  }
  testing::InstallFolder install_;
  std::unique_ptr<platform::Registry> registry_;
  testing::FakeProxyView view_;
  using Written = std::map<std::wstring, std::wstring>;
  Written written_;
};

// Every value of a complete apply: LoginTest.AProxySetBeforeTheFirstLoginIsUsedAndSavedWithTheAccount.
TEST_F(ProxyTest, EnabledWithoutAddressWritesOnlyTheFlag) {
  view_.address.clear();
  EXPECT_FALSE(Presenter().OnApply());
  EXPECT_EQ(written_, (Written{{L"Proxyset", L"1"}}));
  EXPECT_EQ(install_.ui().boxes(),
            (Boxes{{L"Enter the proxy address.", kTitle, platform::kMbIconStop}}));
  EXPECT_EQ(view_.focus, L"address");
}

TEST_F(ProxyTest, AuthenticationWithoutUserNameStopsAfterTheAddress) {
  view_.auth = true;
  EXPECT_FALSE(Presenter().OnApply());
  EXPECT_EQ(written_, (Written{{L"Proxyset", L"1"}, {L"proxytypehttp", L"1"}, {L"proxytypesocks", L"0"},
                               {L"ProxyName", L"proxy.local"}, {L"ProxyPort", L"8080"},
                               {L"ProxyAuthOn", L"1"}}));
  EXPECT_EQ(install_.ui().boxes().at(0).text, L"Enter the proxy authentication username");
  EXPECT_EQ(view_.focus, L"user");
}

TEST_F(ProxyTest, ResetEmptiesTheTextsAndWritesNothing) {
  view_.user = L"u";
  view_.password = L"p";
  Presenter().OnReset();
  EXPECT_EQ(view_.address + view_.port + view_.user + view_.password, L"");
  EXPECT_TRUE(written_.empty());
}

TEST(ProxyServerText, SplitsBothForms) {
  struct Row {
    const wchar_t* text;
    const wchar_t* host;
    const wchar_t* port;
  } rows[] = {
      {L"host:8080", L"host", L"8080"},
      {L"http=host:3128;ftp=other:21", L"host", L"3128"},
      {L"http=host:3128", L"host", L"3128"},
      {L"socks=sock.example:1080", L"sock.example", L"1080"},
      {L"https=secure:443;http=plain:80", L"secure", L"443"},
      {L"host", L"host", L""},
      {L"", L"", L""},
  };
  for (const auto& row : rows) {
    HostPort split = SplitProxyServer(row.text);
    EXPECT_EQ(split.host, row.host) << row.text;
    EXPECT_EQ(split.port, row.port) << row.text;
  }
}

TEST(ProxyPortField, KeepsDigitsBackspaceAndEscapeOnly) {
  for (wchar_t key : std::wstring(L"0123456789\b\x1b")) EXPECT_TRUE(AcceptPortKey(key)) << int(key);
  for (wchar_t key : std::wstring(L"aZ -.:\t\r")) EXPECT_FALSE(AcceptPortKey(key)) << int(key);
}

TEST_F(ProxyTest, SystemSettingsFillTheFieldsWhenTheProxyIsOn) {
  view_.enabled = false;
  view_.address = L"keep";
  view_.port = L"1";
  registry_->WriteDword(kInternetSettingsKey, L"ProxyEnable", 0);
  registry_->WriteString(kInternetSettingsKey, L"ProxyServer", L"other:99");
  Presenter().OnGetIeSettings();
  EXPECT_EQ(install_.ui().boxes(),
            (Boxes{{L"The local Internet proxy settings are currently disabled.", kTitle,
                    platform::kMbIconInformation}}));
  EXPECT_EQ(view_.address, L"keep");
  EXPECT_FALSE(view_.enabled);

  registry_->WriteDword(kInternetSettingsKey, L"ProxyEnable", 1);
  Presenter().OnGetIeSettings();
  EXPECT_TRUE(view_.enabled);
  EXPECT_EQ(view_.address, L"other");
  EXPECT_EQ(view_.port, L"99");
  EXPECT_TRUE(written_.empty());
}

}  // namespace
}  // namespace tavrine::dialogs
