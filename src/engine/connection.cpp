#include "engine/connection.h"

#include <algorithm>
#include <chrono>
#include <random>

#include "engine/ip_resolve.h"
#include "engine/mpc_ini.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "profile/character_shift.h"
#include "profile/profile_store.h"
#include "profile/safe_name.h"
#include "profile/user_name_ini.h"

namespace tavrine::engine {

namespace {

using foundation::FileExists;
using foundation::JoinPath;

constexpr const wchar_t* kRequestFile = L"DLLInput.txt";

std::wstring FirstNonEmpty(std::wstring value, const std::wstring& fallback_key) {
  return value.empty() ? Connection::ProfileValue(fallback_key) : value;
}

}  // namespace

// The profile store's shorthands trace their own failures and never throw.
std::wstring Connection::ProfileValue(const std::wstring& key) {
  return profile::GetUserProfile(key);
}

void Connection::SetProfileValue(const std::wstring& key, const std::wstring& value) {
  profile::UpdateUserProfile(key, value);
}

void WriteRequestLines(const std::wstring& folder, const std::vector<std::wstring>& lines) {
  if (folder.empty()) return;
  std::wstring file = JoinPath(folder, kRequestFile);
  if (!foundation::DeleteFileUnforced(file)) return;
  foundation::WriteUtf16Lines(file, lines);
}

std::vector<std::wstring> ProxyLines(const ProxyBlock& proxy) {
  return {std::to_wstring(proxy.proxyexistsflag), std::to_wstring(proxy.proxytype),
          proxy.proxyserverip,  proxy.proxyserverport,
          proxy.proxyserveruname, proxy.proxyserverpwd};
}

void Connection::RefreshWorkRoot() { work_root_ = foundation::ComputeWorkRoot(); }

std::wstring Connection::UserFolder() const {
  return work_root_ + foundation::LoadedConfiguration().installation_name + folder_user_;
}

void Connection::LoadProfileValues() {
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

std::wstring Connection::CurrentUser() {
  std::wstring current = profile::CurrentUserName();
  if (!current.empty()) folder_user_ = current;
  return current;
}

std::vector<std::wstring> Connection::BasicRequestLines(const ProxyBlock& proxy) const {
  std::vector<std::wstring> lines = {server_address_,
                                     server_port_,
                                     profile::ShiftCharacters(user_name_),
                                     profile::ShiftCharacters(password_),
                                     profile::ShiftCharacters(enc_password_),
                                     proxy.AsciiRandom};
  for (auto& line : ProxyLines(proxy)) lines.push_back(std::move(line));
  return lines;
}

void Connection::WriteRequest(const std::wstring& folder, const ProxyBlock& proxy) {
  RefreshWorkRoot();
  WriteRequestLines(folder, BasicRequestLines(proxy));
}

void Connection::WriteBackupSetRequest(const std::wstring& folder, std::int16_t set,
                                       std::int32_t first, std::int32_t second,
                                       const ProxyBlock& proxy) {
  RefreshWorkRoot();
  std::vector<std::wstring> lines = BasicRequestLines(proxy);
  lines.resize(6);
  lines.push_back(std::to_wstring(set));
  lines.push_back(std::to_wstring(first));
  lines.push_back(std::to_wstring(second));
  for (auto& line : ProxyLines(proxy)) lines.push_back(std::move(line));
  WriteRequestLines(folder, lines);
}

void Connection::WriteVersionRequest(const std::wstring& folder, const ProxyBlock& proxy,
                                     const std::wstring& remote_file) {
  RefreshWorkRoot();
  if (folder.empty()) return;
  MpcState mpc = UpdateMpcIniForThisComputer(folder);
  std::wstring remote_path = remote_file;
  // With several computers the first path component names the computer,
  // which the engine must not see.
  if (mpc.multiple_pc && mpc.host_count != L"1") {
    std::size_t first = remote_path.find(L'\\');
    if (first != std::wstring::npos) remote_path.erase(0, first + 1);
  }
  std::vector<std::wstring> lines = BasicRequestLines(proxy);
  lines.push_back(remote_path);
  WriteRequestLines(folder, lines);
}

void Connection::WriteMachineRequest(const std::wstring& folder, const ProxyBlock& proxy) {
  RefreshWorkRoot();
  if (folder.empty()) return;
  WriteRequestLines(folder, BasicRequestLines(proxy));
  UpdateMpcIniForThisComputer(folder);
}

ProxySettings Connection::Proxy() const {
  ProxySettings proxy;
  proxy.Proxyenabled = proxy_flag_;
  proxy.IPText = proxy_host_;
  proxy.ProxyPort = proxy_port_;
  proxy.httpopt_Item = proxy_http_;
  proxy.socksopt_Item = proxy_socks_;
  proxy.sUsername = proxy_user_;
  proxy.sPassword = proxy_password_;
  return proxy;
}

std::wstring GenerateRandomNumber() {
  auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
  std::mt19937 generator(static_cast<std::uint32_t>(now) ^ std::random_device{}());
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  std::wstring number;
  for (int i = 0; i < 5; ++i) {
    // generate_canonical may round up to 1.0, which would give 256.
    number += std::to_wstring(std::min(static_cast<int>(255 * uniform(generator) + 1), 255));
  }
  // The number is returned even when it cannot be kept.
  profile::WriteStoredRandomNumber(number);
  return number;
}

void Connection::ResolveServerAddress() {
  if (server_address_ == L"localhost") return;
  std::wstring host = FileExists(foundation::ConfigurationFilePath())
                          ? foundation::ReadConfigValue(L"ConnectionInfo", L"DomainName")
                          : std::wstring(foundation::kDefaultServerHost);
  server_address_ = host;
  server_address_ = ResolveHostAddress(host);
  if (server_address_.empty()) server_address_ = foundation::LoadedConfiguration().current_address;
}

void Connection::SetEncryptionPassword(const std::wstring& password) {
  enc_password_ = password;
  SetProfileValue(L"encpasswordnew", password);
}

void Connection::SaveServerAddress() {
  SetProfileValue(L"serverip", server_address_);
  SetProfileValue(L"IPAddress", server_address_);
  SetProfileValue(L"port", server_port_);
  SetProfileValue(L"Port", server_port_);
}

std::wstring RandomNumberForRequest() {
  std::wstring random = Connection::ProfileValue(L"random");
  if (random.empty()) random = profile::ReadStoredRandomNumber();
  if (random.empty()) random = L"Does not exist";
  return random;
}

}  // namespace tavrine::engine
