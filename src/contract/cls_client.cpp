#include "contract/cls_client.h"

#include "contract/failure_boundary.h"
#include "engine/result_file.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/trace_log.h"
#include "profile/user_name_ini.h"

namespace tavrine::contract {

namespace {

constexpr const wchar_t* kClass = L"clsClient";

// The contract's reader: false, the value and description left as they were
// when the engine left none.
void ReadInto(const std::wstring& folder, bool& bResult, std::wstring& strDescrip,
              double& lValue) {
  bResult = false;
  engine::ResultFile file = engine::ReadResultFile(folder);
  bResult = file.answered;
  if (file.value) lValue = *file.value;
  if (file.description) strDescrip = *file.description;
}

}  // namespace

void clsClient::GetIPAddress() try {
  connection_.ResolveServerAddress();
} TAVRINE_CATCH_LOG_IN(kClass, L"GetIPAddress")

void clsClient::LoadConfigurations() try {
  foundation::LoadConfigurations();
  connection_.LoadProfileValues();
} TAVRINE_CATCH_LOG_IN(kClass, L"LoadConfigurations")

void clsClient::DeleteInputOutFiles() try {
  connection_.RefreshWorkRoot();
  engine::DeleteExchangeFiles(connection_.UserFolder());
} TAVRINE_CATCH_LOG_IN(kClass, L"DeleteInputOutFiles")

void clsClient::DeleteInputOutFilesTempFd(const std::wstring& fdPath) try {
  engine::DeleteExchangeFiles(fdPath);
} TAVRINE_CATCH_LOG_IN(kClass, L"DeleteInputOutFilesTempFd")

void clsClient::WriteDLLInputFile(const engine::ProxyBlock&) try {
  // This writer opens the request for appending without creating it, right
  // after removing it: it never writes, and says so in the trace log.
  connection_.RefreshWorkRoot();
  std::wstring file = foundation::JoinPath(connection_.UserFolder(), L"DLLInput.txt");
  const wchar_t* description = L"File not found";
  if (foundation::FileExists(file) && !foundation::DeleteFileUnforced(file))
    description = L"Permission denied";
  foundation::TraceException(kClass, L"WriteDLLInputFile", description);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputFile")

void clsClient::WriteDLLInputFileTempFd(const std::wstring& strtempfd,
                                        const engine::ProxyBlock& proxy) try {
  connection_.WriteRequest(strtempfd, proxy);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputFileTempFd")

void clsClient::WriteDLLInputFileBackupSet(std::int16_t nVal, std::int32_t nVal1,
                                           std::int32_t nVal2,
                                           const engine::ProxyBlock& proxy) try {
  connection_.RefreshWorkRoot();
  connection_.WriteBackupSetRequest(connection_.UserFolder(), nVal, nVal1, nVal2, proxy);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputFileBackupSet")

void clsClient::WriteDLLInputFileBackupSetTempFd(const std::wstring& strtempfd,
                                                 std::int16_t nVal, std::int32_t nVal1,
                                                 std::int32_t nVal2,
                                                 const engine::ProxyBlock& proxy) try {
  connection_.WriteBackupSetRequest(strtempfd, nVal, nVal1, nVal2, proxy);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputFileBackupSetTempFd")

void clsClient::ReadDLLOutputFile(bool& bResult, std::wstring& strDescrip, double& lValue) try {
  connection_.RefreshWorkRoot();
  ReadInto(connection_.UserFolder(), bResult, strDescrip, lValue);
} TAVRINE_CATCH_LOG_IN(kClass, L"ReadDLLOutputFile")

void clsClient::ReadDLLOutputFileTempFd(const std::wstring& strtempfd, bool& bResult,
                                        std::wstring& strDescrip, double& lValue) try {
  ReadInto(strtempfd, bResult, strDescrip, lValue);
} TAVRINE_CATCH_LOG_IN(kClass, L"ReadDLLOutputFileTempFd")

std::int32_t clsClient::LoadProxySettings(engine::ProxySettings& ProxyParam) try {
  ProxyParam = connection_.Proxy();
  return 0;
} TAVRINE_CATCH_RETURN_IN(kClass, L"LoadProxySettings", -1)

std::wstring clsClient::GetCurrentUser() try {
  return connection_.CurrentUser();
} TAVRINE_CATCH_RETURN_IN(kClass, L"GetCurrentUser", std::wstring())

std::wstring clsClient::GetMachineRandomNumber() try {
  return profile::ReadStoredRandomNumber();
} TAVRINE_CATCH_RETURN_IN(kClass, L"GetMachineRandomNumber", std::wstring())

void clsClient::WriteDLLInputVersionFile(const std::wstring& strtempfd,
                                         const engine::ProxyBlock& proxy,
                                         const std::wstring& sFileName) try {
  connection_.WriteVersionRequest(strtempfd, proxy, sFileName);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputVersionFile")

void clsClient::SetIPAddress(const std::wstring& IPAddress) try {
  connection_.SetServerAddress(IPAddress);
} TAVRINE_CATCH_LOG_IN(kClass, L"SetIPAddress")

void clsClient::SetOutgoingPort(const std::wstring& outgoingport) try {
  connection_.SetServerPort(outgoingport);
} TAVRINE_CATCH_LOG_IN(kClass, L"SetOutgoingPort")

void clsClient::SetEncPassWord(const std::wstring& encpswd) try {
  connection_.SetEncryptionPassword(encpswd);
} TAVRINE_CATCH_LOG_IN(kClass, L"SetEncPassWord")

std::wstring clsClient::GenerateRandomNumber() try {
  return engine::GenerateRandomNumber();
} TAVRINE_CATCH_RETURN_IN(kClass, L"GenerateRandomNumber", std::wstring())

void clsClient::UpdateUserProfile(const std::wstring& skey, const std::wstring& sData) try {
  engine::Connection::SetProfileValue(skey, sData);
} TAVRINE_CATCH_LOG_IN(kClass, L"UpdateUserProfile")

std::wstring clsClient::GetUserProfile(const std::wstring& skey) try {
  return engine::Connection::ProfileValue(skey);
} TAVRINE_CATCH_RETURN_IN(kClass, L"GetUserProfile", std::wstring())

void clsClient::SaveIP_PORT() try {
  connection_.SaveServerAddress();
} TAVRINE_CATCH_LOG_IN(kClass, L"SaveIP_PORT")

void clsClient::WriteDLLInputFileTempFdPC(const std::wstring& strtempfd,
                                          const engine::ProxyBlock& proxy) try {
  connection_.WriteMachineRequest(strtempfd, proxy);
} TAVRINE_CATCH_LOG_IN(kClass, L"WriteDLLInputFileTempFdPC")

}  // namespace tavrine::contract
