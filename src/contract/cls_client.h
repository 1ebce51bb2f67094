#pragma once
// clsClient as callers know it: request files, result files and the cached
// connection values. Each method is a thin boundary over engine::Connection.
#include <cstdint>
#include <string>

#include "engine/connection.h"
#include "engine/proxy.h"

namespace tavrine::contract {

class clsClient {
 public:
  void GetIPAddress();
  void LoadConfigurations();
  void DeleteInputOutFiles();
  void DeleteInputOutFilesTempFd(const std::wstring& fdPath);
  void WriteDLLInputFile(const engine::ProxyBlock& proxy);
  void WriteDLLInputFileTempFd(const std::wstring& strtempfd, const engine::ProxyBlock& proxy);
  void WriteDLLInputFileBackupSet(std::int16_t nVal, std::int32_t nVal1, std::int32_t nVal2,
                                  const engine::ProxyBlock& proxy);
  void WriteDLLInputFileBackupSetTempFd(const std::wstring& strtempfd, std::int16_t nVal,
                                        std::int32_t nVal1, std::int32_t nVal2,
                                        const engine::ProxyBlock& proxy);
  void ReadDLLOutputFile(bool& bResult, std::wstring& strDescrip, double& lValue);
  void ReadDLLOutputFileTempFd(const std::wstring& strtempfd, bool& bResult,
                               std::wstring& strDescrip, double& lValue);
  std::int32_t LoadProxySettings(engine::ProxySettings& ProxyParam);
  std::wstring GetCurrentUser();
  std::wstring GetMachineRandomNumber();
  void WriteDLLInputVersionFile(const std::wstring& strtempfd, const engine::ProxyBlock& proxy,
                                const std::wstring& sFileName);
  void SetIPAddress(const std::wstring& IPAddress);
  void SetOutgoingPort(const std::wstring& outgoingport);
  void SetEncPassWord(const std::wstring& encpswd);
  std::wstring GenerateRandomNumber();
  void UpdateUserProfile(const std::wstring& skey, const std::wstring& sData);
  std::wstring GetUserProfile(const std::wstring& skey);
  void SaveIP_PORT();
  void WriteDLLInputFileTempFdPC(const std::wstring& strtempfd, const engine::ProxyBlock& proxy);

  std::wstring UserFolder() const { return connection_.UserFolder(); }
  const std::wstring& server_address() const { return connection_.server_address(); }
  const std::wstring& server_port() const { return connection_.server_port(); }

 private:
  engine::Connection connection_;
};

}  // namespace tavrine::contract
