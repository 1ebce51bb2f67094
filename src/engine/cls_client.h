#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "engine/proxy.h"

namespace tavrine::engine {

// Writes the engine's request files, reads its results, and keeps the cached
// profile values every request carries.
class clsClient {
 public:
  void GetIPAddress();
  void LoadConfigurations();
  void DeleteInputOutFiles();
  void DeleteInputOutFilesTempFd(const std::wstring& fdPath);
  void WriteDLLInputFile(const ProxyBlock& proxy);
  void WriteDLLInputFileTempFd(const std::wstring& strtempfd, const ProxyBlock& proxy);
  void WriteDLLInputFileBackupSet(std::int16_t nVal, std::int32_t nVal1, std::int32_t nVal2,
                                  const ProxyBlock& proxy);
  void WriteDLLInputFileBackupSetTempFd(const std::wstring& strtempfd, std::int16_t nVal,
                                        std::int32_t nVal1, std::int32_t nVal2,
                                        const ProxyBlock& proxy);
  void ReadDLLOutputFile(bool& bResult, std::wstring& strDescrip, double& lValue);
  void ReadDLLOutputFileTempFd(const std::wstring& strtempfd, bool& bResult,
                               std::wstring& strDescrip, double& lValue);
  std::int32_t LoadProxySettings(ProxySettings& ProxyParam);
  std::wstring GetCurrentUser();
  std::wstring GetMachineRandomNumber();
  void WriteDLLInputVersionFile(const std::wstring& strtempfd, const ProxyBlock& proxy,
                                const std::wstring& sFileName);
  void SetIPAddress(const std::wstring& IPAddress);
  void SetOutgoingPort(const std::wstring& outgoingport);
  void SetEncPassWord(const std::wstring& encpswd);
  std::wstring GenerateRandomNumber();
  void UpdateUserProfile(const std::wstring& skey, const std::wstring& sData);
  std::wstring GetUserProfile(const std::wstring& skey);
  void SaveIP_PORT();
  void WriteDLLInputFileTempFdPC(const std::wstring& strtempfd, const ProxyBlock& proxy);

  // work root + installation name + the user whose folder is used.
  std::wstring UserFolder() const;
  const std::wstring& server_address() const { return server_address_; }
  const std::wstring& server_port() const { return server_port_; }

 private:
  void RefreshWorkRoot();
  std::vector<std::wstring> BasicRequestLines(const ProxyBlock& proxy) const;
  static std::vector<std::wstring> ProxyLines(const ProxyBlock& proxy);

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

// The random number a request carries: the profile's "random", else the
// stored client number, else "Does not exist".
std::wstring RandomNumberForRequest(clsClient& client);

}  // namespace tavrine::engine
