#include "contract/cls_client.h"

#include <gtest/gtest.h>

#include "engine/exchange_folder.h"
#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "platform/ini_file.h"
#include "platform/path.h"
#include "profile/profile_store.h"
#include "support/install_folder.h"

namespace tavrine::engine {
namespace {

using testing::InstallFolder;
using testing::ReadFileBytes;
using testing::Utf16LeFile;
using contract::clsClient;

class ClsClientTest : public ::testing::Test {
 protected:
  void SetUp() override {
    install_.WriteStandardConfiguration();
    testing::ResetProfileStore();
    profile::SetCurrentUserName(L"abc");
    SetProfile({{L"username", L"abc"}, {L"password", L""}, {L"encpassword", L"old"},
                {L"encpasswordnew", L"x~"}, {L"serverip", L"10.1.2.3"}, {L"port", L"8443"}});
    client_.LoadConfigurations();
    folder_ = install_.wpath() + platform::kPathSeparator + L"ex change";
    std::filesystem::create_directories(platform::ToFsPath(folder_));
  }

  void TearDown() override { testing::ResetProfileStore(); }

  std::string Request() const {
    return ReadFileBytes(platform::ToFsPath(folder_) / "DLLInput.txt");
  }
  static void SetProfile(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> values) {
    for (const auto& [name, value] : values) profile::UpdateUserProfile(name, value);
  }

  InstallFolder install_;
  clsClient client_;
  std::wstring folder_;
};

// Server lines, shifted credentials (abc -> cde, empty stays empty, ~ -> the
// code-page character 0x80), the random number, then the proxy block.
constexpr const wchar_t* kHead = L"10.1.2.3\r\n8443\r\ncde\r\n\r\nz\u20AC\r\nR1\r\n";
const std::wstring kNoProxy = L"0\r\n0\r\n0\r\n0\r\n0\r\n0\r\n";

const ProxyBlock kSampleProxy{.proxyexistsflag = 1, .proxytype = 2, .proxyserverip = L"proxy.lan",
                              .proxyserverport = L"3128", .proxyserveruname = L"pu",
                              .proxyserverpwd = L"pp", .AsciiRandom = L"R1"};

// Twelve lines, or fifteen with the backup set's numbers after the random;
// an earlier, longer request is replaced whole.
TEST_F(ClsClientTest, RequestsByteForByte) {
  testing::WriteFileBytes(platform::ToFsPath(folder_) / "DLLInput.txt", std::string(5000, 'x'));
  const std::wstring proxy = L"1\r\n2\r\nproxy.lan\r\n3128\r\npu\r\npp\r\n";
  client_.WriteDLLInputFileTempFd(folder_, kSampleProxy);
  EXPECT_EQ(Request(), Utf16LeFile(kHead + proxy));
  client_.WriteDLLInputFileBackupSetTempFd(folder_, -3, 70000, -2147483647 - 1, kSampleProxy);
  EXPECT_EQ(Request(), Utf16LeFile(kHead + (L"-3\r\n70000\r\n-2147483648\r\n" + proxy)));
}

TEST_F(ClsClientTest, VersionRequestDropsTheComputerOnlyWithSeveralComputers) {
  struct Case {
    const char* host_count;  // nullptr: no MPC.ini
    const wchar_t* line13;
  } cases[] = {
      {"2", L"C\\Docs\\a.txt"},
      {"1", L"HOMEPC\\C\\Docs\\a.txt"},
      {nullptr, L"HOMEPC\\C\\Docs\\a.txt"},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(platform::ToFsPath(folder_) / "MPC.ini");
    if (c.host_count) {
      testing::WriteFileBytes(platform::ToFsPath(folder_) / "MPC.ini",
                              std::string("[MPC]\r\nHostCount=") + c.host_count + "\r\n");
    }
    client_.WriteDLLInputVersionFile(folder_, ProxyArguments({}, L"R1"), L"HOMEPC\\C\\Docs\\a.txt");
    EXPECT_EQ(Request(), Utf16LeFile(kHead + (kNoProxy + c.line13 + L"\r\n")))
        << (c.host_count ? c.host_count : "none");
    EXPECT_EQ(foundation::ThreadState().multiple_pc, c.host_count != nullptr);
  }
  // Without several computers this computer is recorded as the only host.
  std::wstring mpc = folder_ + platform::kPathSeparator + L"MPC.ini";
  EXPECT_EQ(platform::ReadIniString(L"MPC", L"Hosts", mpc), L"abc|0;");
  EXPECT_EQ(platform::ReadIniString(L"MPC", L"HostCount", mpc), L"1");
}

TEST_F(ClsClientTest, WriteDllInputFileNeverWritesAndLogsWhy) {
  std::wstring user_folder = client_.UserFolder();
  std::filesystem::create_directories(platform::ToFsPath(user_folder));
  client_.WriteDLLInputFile(kSampleProxy);
  EXPECT_FALSE(std::filesystem::exists(platform::ToFsPath(user_folder) / "DLLInput.txt"));
  std::string log = ReadFileBytes(install_.path() / "Log" / "TavrinETestUI.txt");
  EXPECT_NE(log.find("[EXCEPTION] clsClient :: WriteDLLInputFile() : File not found"),
            std::string::npos);

  // A read-only request is never removed: the removal fails and ends each write.
  namespace fs = std::filesystem;
  for (const std::wstring& folder : {user_folder, folder_}) {
    const fs::path request = platform::ToFsPath(folder) / "DLLInput.txt";
    testing::WriteFileBytes(request, "old");
    fs::permissions(request, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  }
  client_.WriteDLLInputFile(kSampleProxy);
  client_.WriteDLLInputFileTempFd(folder_, kSampleProxy);
  client_.DeleteInputOutFilesTempFd(folder_);
  for (const std::wstring& folder : {user_folder, folder_}) {
    const fs::path request = platform::ToFsPath(folder) / "DLLInput.txt";
    EXPECT_EQ(ReadFileBytes(request), "old");
    fs::permissions(request, fs::perms::owner_write, fs::perm_options::add);
  }
  log = ReadFileBytes(install_.path() / "Log" / "TavrinETestUI.txt");
  EXPECT_NE(log.find("[EXCEPTION] clsClient :: WriteDLLInputFile() : Permission denied"),
            std::string::npos);
}

TEST_F(ClsClientTest, CacheFallsBackToOlderProfileValues) {
  SetProfile({{L"encpasswordnew", L""}, {L"serverip", L""}, {L"IPAddres", L"9.9.9.9"},
              {L"port", L""}, {L"OutPort", L"21"}});
  client_.LoadConfigurations();
  client_.WriteDLLInputFileTempFd(folder_, ProxyArguments({}, L"R1"));
  EXPECT_EQ(Request(), Utf16LeFile(L"9.9.9.9\r\n21\r\ncde\r\n\r\nqnf\r\nR1\r\n" + kNoProxy));
}

// Whatever the result files hold, the value stays a number and the description a line.
TEST_F(ClsClientTest, ResultFilesAreReadInTheirOrder) {
  const std::string megabyte(1 << 20, '7');
  const struct {
    const char* name;
    std::optional<std::string> output;  // nullopt: file absent
    std::optional<std::string> info;
    bool result;
    double value;
    std::wstring description;
  } cases[] = {
      {"success", "402\r\n", "-416\r\nignored\r\n", true, 402, L"keep"},
      {"empty success falls to info", "", "-504\r\nNetwork\r\n", false, -504, L"Network"},
      {"info with one line keeps the text", {}, "-416\r\n", false, -416, L"keep"},
      {"info with an empty second line", {}, "-416\r\n\r\n", false, -416, L""},
      {"not a number keeps the value", "garbage\r\n", {}, true, 7, L"keep"},
      {"no answer at all", {}, {}, false, 7, L"keep"},
      // Past the range of a double is "not a number".
      {"a megabyte of digits", megabyte + "\r\n", {}, true, 7, L"keep"},
      {"a megabyte-long description", {}, "-12009\r\n" + megabyte + "\r\n", false, -12009,
       std::wstring(1 << 20, L'7')},
      {"NUL inside the number", std::string("40\0" "2\r\n", 5), {}, true, 7, L"keep"},
      {"overflowing number", "-99999999999999999999999\r\n", {}, true, -99999999999999999999999.0, L"keep"},
      {"hex and words", "0x1F\r\n", "inf\r\nnan\r\n", true, 7, L"keep"},
      {"UTF-16 where ANSI is read", "\xFF\xFE" "4\0" "0\0" "2\0", {}, true, 7, L"keep"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto folder = platform::ToFsPath(folder_);
    std::filesystem::remove(folder / "DLLOutput.txt");
    std::filesystem::remove(folder / "DLLOutputInfo.txt");
    if (c.output) testing::WriteFileBytes(folder / "DLLOutput.txt", *c.output);
    if (c.info) testing::WriteFileBytes(folder / "DLLOutputInfo.txt", *c.info);
    bool result = !c.result;
    std::wstring description = L"keep";
    double value = 7;
    client_.ReadDLLOutputFileTempFd(folder_, result, description, value);
    EXPECT_EQ(result, c.result);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(description, c.description);
  }
}

TEST_F(ClsClientTest, DeleteRemovesExactlyTheFourExchangeFiles) {
  const auto folder = platform::ToFsPath(folder_);
  const std::string names[] = {"DLLOutput.txt", "DLLOutput1.txt", "DLLInput.txt",
                               "DLLOutputInfo.txt", "Backupfile.txt"};
  for (const std::string& name : names) testing::WriteFileBytes(folder / name, "x");
  client_.DeleteInputOutFilesTempFd(folder_);
  for (const std::string& name : names) {
    EXPECT_EQ(std::filesystem::exists(folder / name), name == "Backupfile.txt") << name;
  }
}

// An empty folder names no folder: the host's current directory is left alone.
TEST_F(ClsClientTest, AnEmptyFolderIsNotTheCurrentDirectory) {
  const auto folder = platform::ToFsPath(folder_);
  testing::WriteFileBytes(folder / "DLLOutput.txt", "5\r\n");
  const auto previous = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  client_.DeleteInputOutFilesTempFd(L"");
  client_.WriteDLLInputFileTempFd(L"", kSampleProxy);
  client_.WriteDLLInputFileTempFdPC(L"", kSampleProxy);
  client_.WriteDLLInputVersionFile(L"", kSampleProxy, L"a.txt");
  client_.WriteDLLInputFileBackupSetTempFd(L"", 1, 2, 3, kSampleProxy);
  bool result = true;
  std::wstring description = L"keep";
  double value = 7;
  client_.ReadDLLOutputFileTempFd(L"", result, description, value);
  std::filesystem::current_path(previous);
  EXPECT_FALSE(result);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(ReadFileBytes(folder / "DLLOutput.txt"), "5\r\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "DLLInput.txt"));
  EXPECT_FALSE(std::filesystem::exists(folder / "MPC.ini"));
}

TEST_F(ClsClientTest, ServerAddressAndPortAreSavedUnderBothNames) {
  client_.SetIPAddress(L"1.2.3.4");
  client_.SetOutgoingPort(L"99");
  client_.SaveIP_PORT();
  EXPECT_EQ(client_.GetUserProfile(L"serverip"), L"1.2.3.4");
  EXPECT_EQ(client_.GetUserProfile(L"IPAddress"), L"1.2.3.4");
  EXPECT_EQ(client_.GetUserProfile(L"port"), L"99");
  EXPECT_EQ(client_.GetUserProfile(L"Port"), L"99");
  clsClient reloaded;
  reloaded.LoadConfigurations();
  EXPECT_EQ(reloaded.server_address(), L"1.2.3.4");
}

TEST_F(ClsClientTest, GetIpAddressResolvesTheConfiguredHostOrFallsBack) {
  client_.SetIPAddress(L"localhost");
  client_.GetIPAddress();
  EXPECT_EQ(client_.server_address(), L"localhost");

  client_.SetIPAddress(L"old");
  client_.GetIPAddress();  // DomainName=localhost
  EXPECT_EQ(client_.server_address(), L"127.0.0.1");

  install_.WriteConfiguration(
      "[ProductInfo]\r\nProductInstallationName=TavrinE\r\n[ConnectionInfo]\r\n"
      "DomainName=no-such-host.invalid\r\n");
  foundation::LoadedConfiguration().current_address = L"127.0.0.9";
  client_.GetIPAddress();
  EXPECT_EQ(client_.server_address(), L"127.0.0.9");
}

TEST_F(ClsClientTest, LoadProxySettingsCopiesTheCache) {
  SetProfile({{L"Proxyset", L"1"}, {L"proxytypehttp", L"-1"}, {L"ProxyName", L"px"},
              {L"ProxyPort", L"8080"}, {L"ProxyUser", L"u"}, {L"ProxyPass", L"secret"}});
  client_.LoadConfigurations();
  ProxySettings settings;
  EXPECT_EQ(client_.LoadProxySettings(settings), 0);
  EXPECT_EQ(settings.Proxyenabled, 1);
  EXPECT_TRUE(settings.httpopt_Item);
  EXPECT_FALSE(settings.socksopt_Item);
  EXPECT_EQ(settings.sPassword, L"secret");
  ProxyBlock block = ProxyArguments(settings, L"r");
  EXPECT_EQ(block.proxytype, 1);
  EXPECT_EQ(block.proxyserverip, L"px");
  settings.httpopt_Item = false;
  EXPECT_EQ(ProxyArguments(settings, L"r").proxytype, 2);
  settings.Proxyenabled = 0;
  EXPECT_EQ(ProxyArguments(settings, L"r").proxyserverpwd, L"0");
}

// A request carries the profile's number, else the last one generated, else "Does not exist".
TEST_F(ClsClientTest, RequestRandomIsTheProfilesOrTheStoredGeneratedNumber) {
  profile::UpdateUserProfile(L"random", L"");
  EXPECT_EQ(RandomNumberForRequest(), L"Does not exist");
  for (int round = 0; round < 20; ++round) {
    std::wstring number = client_.GenerateRandomNumber();  // five groups of 1 to 255
    ASSERT_GE(number.size(), 5u);
    ASSERT_LE(number.size(), 15u);
    EXPECT_EQ(number.find_first_not_of(L"0123456789"), std::wstring::npos);
    EXPECT_EQ(RandomNumberForRequest(), number);
  }
  profile::UpdateUserProfile(L"random", L"12345");
  EXPECT_EQ(RandomNumberForRequest(), L"12345");
}

TEST(ExchangeFolder, TwoCallsInTheSameMillisecondGetTwoFolders) {
  InstallFolder install;
  install.clock().SetNow({2020, 1, 1, 9, 7, 5, 42});
  std::wstring user = install.wpath() + platform::kPathSeparator + L"user";
  std::wstring first = MakeExchangeFolder(user);
  std::wstring second = MakeExchangeFolder(user);
  const std::wstring sep(1, platform::kPathSeparator);
  EXPECT_EQ(first, user + sep + L"Temp" + sep + L"9_07_05_042");
  EXPECT_NE(second, first);
  EXPECT_EQ(second.rfind(first, 0), 0u);
  EXPECT_TRUE(std::filesystem::is_directory(platform::ToFsPath(second)));
}

}  // namespace
}  // namespace tavrine::engine
