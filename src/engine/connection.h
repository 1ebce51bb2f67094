#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "engine/proxy.h"

namespace tavrine::engine {

// The values every request carries (account, server, proxy), read from the
// current profile, and the writers of the engine's request files.
class Connection {
 public:
  // Reads the profile values; the configuration must be loaded already.
  void LoadProfileValues();
  // The profile's current user; it becomes the user of the folder too.
  std::wstring CurrentUser();
  ProxySettings Proxy() const;

  void WriteRequest(const std::wstring& folder, const ProxyBlock& proxy);
  void WriteBackupSetRequest(const std::wstring& folder, std::int16_t set, std::int32_t first,
                             std::int32_t second, const ProxyBlock& proxy);
  // The request followed by the remote path of the file (without the
  // computer's name when several computers share the account).
  void WriteVersionRequest(const std::wstring& folder, const ProxyBlock& proxy,
                           const std::wstring& remote_file);
  // The request, and MPC.ini brought up to date for this computer.
  void WriteMachineRequest(const std::wstring& folder, const ProxyBlock& proxy);

  // The server's address from the configured domain name (unless localhost).
  void ResolveServerAddress();
  void SetServerAddress(const std::wstring& address) { server_address_ = address; }
  void SetServerPort(const std::wstring& port) { server_port_ = port; }
  void SetEncryptionPassword(const std::wstring& password);
  // Address and port into the profile, under both of their names.
  void SaveServerAddress();

  // A failing profile read is an empty value; a failing write is dropped (and traced).
  static std::wstring ProfileValue(const std::wstring& key);
  static void SetProfileValue(const std::wstring& key, const std::wstring& value);

  void RefreshWorkRoot();
  // work root + installation name + the user whose folder is used.
  std::wstring UserFolder() const;
  const std::wstring& server_address() const { return server_address_; }
  const std::wstring& server_port() const { return server_port_; }

 private:
  std::vector<std::wstring> BasicRequestLines(const ProxyBlock& proxy) const;

  std::wstring work_root_;
  std::wstring folder_user_;
  std::wstring user_name_;
  std::wstring password_;
  std::wstring enc_password_;
  std::wstring server_address_;
  std::wstring server_port_;
  std::wstring random_;
  std::int32_t proxy_flag_ = 0;
  bool proxy_http_ = false;
  bool proxy_socks_ = false;
  std::wstring proxy_host_;
  std::wstring proxy_port_;
  std::wstring proxy_user_;
  std::wstring proxy_password_;
};

// Replaces <folder>/DLLInput.txt with `lines`; a file that cannot be removed
// ends the write. Nothing when `folder` is empty.
void WriteRequestLines(const std::wstring& folder, const std::vector<std::wstring>& lines);

// The six proxy lines of a request.
std::vector<std::wstring> ProxyLines(const ProxyBlock& proxy);

// A new client random number: five numbers of 1..255, kept in UserName.ini.
std::wstring GenerateRandomNumber();

// The random number a request carries: the profile's "random", else the
// stored client number, else "Does not exist".
std::wstring RandomNumberForRequest();

}  // namespace tavrine::engine
