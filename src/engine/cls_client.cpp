#include "engine/cls_client.h"

#include <algorithm>
#include <chrono>
#include <random>

#include "engine/ip_resolve.h"
#include "engine/mpc_ini.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"
#include "platform/path.h"
#include "platform/services.h"
#include "profile/character_shift.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"
#include "profile/user_name_ini.h"

namespace tavrine::engine {

namespace {

using foundation::FileExists;
using foundation::JoinPath;

constexpr const wchar_t* kRequestFile = L"DLLInput.txt";

// Profile reads never stop a writer: a failing read is an empty value.
std::wstring ProfileValue(const std::wstring& key) {
  try {
    return profile::GetUserProfile(key);
  } catch (...) {
    return L"";
  }
}

std::wstring FirstNonEmpty(std::wstring value, const std::wstring& fallback_key) {
  return value.empty() ? ProfileValue(fallback_key) : value;
}

// An empty folder from a caller would otherwise mean the host's current
// directory: requests (credentials included) written there, its files deleted.
void DeleteResultFiles(const std::wstring& folder) {
  if (folder.empty()) return;
  for (const wchar_t* name : {L"DLLOutput.txt", L"DLLOutput1.txt", L"DLLInput.txt",
                              L"DLLOutputInfo.txt"}) {
    foundation::DeleteFileUnforced(JoinPath(folder, name));
  }
}

// Replaces <folder>/DLLInput.txt; a file that cannot be removed ends the write.
void WriteRequest(const std::wstring& folder, const std::vector<std::wstring>& lines) {
  if (folder.empty()) return;
  std::wstring file = JoinPath(folder, kRequestFile);
  if (!foundation::DeleteFileUnforced(file)) return;
  foundation::WriteUtf16Lines(file, lines);
}

void ReadResultFiles(const std::wstring& folder, bool& bResult, std::wstring& strDescrip,
                     double& lValue) {
  bResult = false;
  bool numbered = false;
  // No folder, no answer: nothing is read from the host's current directory.
  auto read = [&folder](const wchar_t* name) -> std::optional<std::vector<std::wstring>> {
    if (folder.empty()) return std::nullopt;
    return foundation::ReadAnsiLines(JoinPath(folder, name));
  };
  if (auto lines = read(L"DLLOutput.txt"); lines && !lines->empty()) {
    auto number = foundation::ParseNumber(lines->front());
    if (number) lValue = *number;
    numbered = number.has_value();
    bResult = true;
  }
  if (!bResult) {
    if (auto lines = read(L"DLLOutputInfo.txt"); lines && !lines->empty()) {
      auto number = foundation::ParseNumber(lines->front());
      if (number) lValue = *number;
      numbered = number.has_value();
      if (lines->size() > 1) strDescrip = (*lines)[1];
    }
  }
  // A crashed, silent or garbled engine otherwise leaves no mark in the log.
  if (!numbered) foundation::Trace(L"ReadDLLOutputFile :: no result code from the engine in " + folder);
}

}  // namespace

void clsClient::RefreshWorkRoot() { work_root_ = foundation::ComputeWorkRoot(); }

std::wstring clsClient::UserFolder() const {
  return work_root_ + foundation::CurrentSettings().installation_name + folder_user_;
}

void clsClient::LoadConfigurations() {
  foundation::LoadConfigurations();
  RefreshWorkRoot();
  user_name_ = ProfileValue(L"username");
  password_ = ProfileValue(L"password");
  enc_password_ = FirstNonEmpty(ProfileValue(L"encpasswordnew"), L"encpassword");
  server_address_ = FirstNonEmpty(ProfileValue(L"serverip"), L"IPAddres");
  server_port_ = FirstNonEmpty(ProfileValue(L"port"), L"OutPort");
  random_ = ProfileValue(L"random");
  proxy_flag_ = foundation::ParseInt32(ProfileValue(L"Proxyset")).value_or(0);
  proxy_http_ = foundation::ParseInt32(ProfileValue(L"proxytypehttp")).value_or(0) != 0;
  proxy_socks_ = foundation::ParseInt32(ProfileValue(L"proxytypesocks")).value_or(0) != 0;
  proxy_host_ = ProfileValue(L"ProxyName");
  proxy_port_ = ProfileValue(L"ProxyPort");
  proxy_user_ = ProfileValue(L"ProxyUser");
  proxy_password_ = ProfileValue(L"ProxyPass");
  // The name becomes a folder: one that could leave the work root is not used.
  folder_user_ = profile::IsSafeName(user_name_) ? user_name_ : std::wstring();
}

std::wstring clsClient::GetCurrentUser() {
  std::wstring current = profile::CurrentUserName();
  if (!current.empty()) folder_user_ = current;
  return current;
}

void clsClient::DeleteInputOutFiles() {
  RefreshWorkRoot();
  DeleteResultFiles(UserFolder());
}

void clsClient::DeleteInputOutFilesTempFd(const std::wstring& fdPath) { DeleteResultFiles(fdPath); }

std::vector<std::wstring> clsClient::ProxyLines(const ProxyBlock& proxy) {
  return {std::to_wstring(proxy.proxyexistsflag), std::to_wstring(proxy.proxytype),
          proxy.proxyserverip,  proxy.proxyserverport,
          proxy.proxyserveruname, proxy.proxyserverpwd};
}

std::vector<std::wstring> clsClient::BasicRequestLines(const ProxyBlock& proxy) const {
  std::vector<std::wstring> lines = {server_address_,
                                     server_port_,
                                     profile::ShiftCharacters(user_name_),
                                     profile::ShiftCharacters(password_),
                                     profile::ShiftCharacters(enc_password_),
                                     proxy.AsciiRandom};
  for (auto& line : ProxyLines(proxy)) lines.push_back(std::move(line));
  return lines;
}

void clsClient::WriteDLLInputFile(const ProxyBlock&) {
  // This writer opens the request for appending without creating it, right
  // after removing it: it never writes, and says so in the trace log.
  RefreshWorkRoot();
  std::wstring file = JoinPath(UserFolder(), kRequestFile);
  const wchar_t* description = L"File not found";
  if (FileExists(file) && !foundation::DeleteFileUnforced(file)) description = L"Permission denied";
  foundation::TraceException(L"clsClient", L"WriteDLLInputFile", description);
}

void clsClient::WriteDLLInputFileTempFd(const std::wstring& strtempfd, const ProxyBlock& proxy) {
  RefreshWorkRoot();
  WriteRequest(strtempfd, BasicRequestLines(proxy));
}

void clsClient::WriteDLLInputFileBackupSet(std::int16_t nVal, std::int32_t nVal1,
                                           std::int32_t nVal2, const ProxyBlock& proxy) {
  RefreshWorkRoot();
  WriteDLLInputFileBackupSetTempFd(UserFolder(), nVal, nVal1, nVal2, proxy);
}

void clsClient::WriteDLLInputFileBackupSetTempFd(const std::wstring& strtempfd,
                                                 std::int16_t nVal, std::int32_t nVal1,
                                                 std::int32_t nVal2, const ProxyBlock& proxy) {
  RefreshWorkRoot();
  std::vector<std::wstring> lines = BasicRequestLines(proxy);
  lines.resize(6);
  lines.push_back(std::to_wstring(nVal));
  lines.push_back(std::to_wstring(nVal1));
  lines.push_back(std::to_wstring(nVal2));
  for (auto& line : ProxyLines(proxy)) lines.push_back(std::move(line));
  WriteRequest(strtempfd, lines);
}

void clsClient::WriteDLLInputVersionFile(const std::wstring& strtempfd, const ProxyBlock& proxy,
                                         const std::wstring& sFileName) {
  RefreshWorkRoot();
  if (strtempfd.empty()) return;
  MpcState mpc = UpdateMpcIniForThisComputer(strtempfd);
  std::wstring remote_path = sFileName;
  // With several computers the first path component names the computer,
  // which the engine must not see.
  if (mpc.multiple_pc && mpc.host_count != L"1") {
    std::size_t first = remote_path.find(L'\\');
    if (first != std::wstring::npos) remote_path.erase(0, first + 1);
  }
  std::vector<std::wstring> lines = BasicRequestLines(proxy);
  lines.push_back(remote_path);
  WriteRequest(strtempfd, lines);
}

void clsClient::WriteDLLInputFileTempFdPC(const std::wstring& strtempfd,
                                          const ProxyBlock& proxy) {
  RefreshWorkRoot();
  if (strtempfd.empty()) return;
  WriteRequest(strtempfd, BasicRequestLines(proxy));
  UpdateMpcIniForThisComputer(strtempfd);
}

void clsClient::ReadDLLOutputFile(bool& bResult, std::wstring& strDescrip, double& lValue) {
  RefreshWorkRoot();
  ReadResultFiles(UserFolder(), bResult, strDescrip, lValue);
}

void clsClient::ReadDLLOutputFileTempFd(const std::wstring& strtempfd, bool& bResult,
                                        std::wstring& strDescrip, double& lValue) {
  ReadResultFiles(strtempfd, bResult, strDescrip, lValue);
}

std::int32_t clsClient::LoadProxySettings(ProxySettings& ProxyParam) {
  ProxyParam.Proxyenabled = proxy_flag_;
  ProxyParam.IPText = proxy_host_;
  ProxyParam.ProxyPort = proxy_port_;
  ProxyParam.httpopt_Item = proxy_http_;
  ProxyParam.socksopt_Item = proxy_socks_;
  ProxyParam.sUsername = proxy_user_;
  ProxyParam.sPassword = proxy_password_;
  return 0;
}

std::wstring clsClient::GetMachineRandomNumber() { return profile::ReadStoredRandomNumber(); }

std::wstring clsClient::GenerateRandomNumber() {
  auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
  std::mt19937 generator(static_cast<std::uint32_t>(now) ^ std::random_device{}());
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::wstring number;
  for (int i = 0; i < 5; ++i) {
    // generate_canonical may round up to 1.0, which would give 256.
    number += std::to_wstring(std::min(static_cast<int>(255 * uniform(generator) + 1), 255));
  }
  try {
    profile::WriteStoredRandomNumber(number);
  } catch (...) {
    // The number is still returned; it is just not kept.
  }
  return number;
}

void clsClient::GetIPAddress() {
  if (server_address_ == L"localhost") return;
  std::wstring host = FileExists(foundation::ConfigurationFilePath())
                          ? foundation::ReadConfigValue(L"ConnectionInfo", L"DomainName")
                          : std::wstring(foundation::kDefaultServerHost);
  server_address_ = host;
  server_address_ = clsIPResolve().GetIPFromHostName(host);
  if (server_address_.empty()) server_address_ = foundation::CurrentSettings().current_address;
}

void clsClient::SetIPAddress(const std::wstring& IPAddress) { server_address_ = IPAddress; }

void clsClient::SetOutgoingPort(const std::wstring& outgoingport) { server_port_ = outgoingport; }

void clsClient::SetEncPassWord(const std::wstring& encpswd) {
  enc_password_ = encpswd;
  UpdateUserProfile(L"encpasswordnew", encpswd);
}

void clsClient::UpdateUserProfile(const std::wstring& skey, const std::wstring& sData) {
  try {
    profile::UpdateUserProfile(skey, sData);
  } catch (...) {
  }
}

std::wstring clsClient::GetUserProfile(const std::wstring& skey) { return ProfileValue(skey); }

void clsClient::SaveIP_PORT() {
  UpdateUserProfile(L"serverip", server_address_);
  UpdateUserProfile(L"IPAddress", server_address_);
  UpdateUserProfile(L"port", server_port_);
  UpdateUserProfile(L"Port", server_port_);
}

std::wstring RandomNumberForRequest(clsClient& client) {
  std::wstring random = client.GetUserProfile(L"random");
  if (random.empty()) random = profile::ReadStoredRandomNumber();
  if (random.empty()) random = L"Does not exist";
  return random;
}

}  // namespace tavrine::engine
