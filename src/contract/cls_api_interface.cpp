#include "contract/cls_api_interface.h"

#include "contract/failure_boundary.h"
#include "operations/remote_operations.h"

namespace tavrine::contract {

engine::Session& clsAPI_Interface::Begin() { return session_.emplace(engine::Session::Open()); }

std::int16_t clsAPI_Interface::API_GetQuota(double& sMaxSize, double& sUsedSpace) try {
  operations::QuotaResult quota = operations::ReadQuota(Begin());
  if (quota.max_size) sMaxSize = *quota.max_size;
  if (quota.used_space) sUsedSpace = *quota.used_space;
  return quota.result;
} TAVRINE_CATCH_RETURN(L"API_GetQuota", -1)

std::int32_t clsAPI_Interface::API_AutoReconnect() try {
  return operations::SilentLogin(Begin(), L"API_AutoReconnect");
} TAVRINE_CATCH_RETURN(L"API_AutoReconnect", -1)

std::int32_t clsAPI_Interface::API_AutoMultipleServerSupport() try {
  return operations::SilentLogin(Begin(), L"API_AutoMultipleServerSupport");
} TAVRINE_CATCH_RETURN(L"API_AutoMultipleServerSupport", -1)

std::int32_t clsAPI_Interface::API_UPDATE_RAND_NUM() try {
  return operations::RenewRandomNumber(Begin());
} TAVRINE_CATCH_RETURN(L"API_UPDATE_RAND_NUM", 0)

std::int32_t clsAPI_Interface::API_REMOTE(const std::wstring& strtempfd) try {
  return operations::ListRemote(Begin(), strtempfd);
} TAVRINE_CATCH_RETURN(L"API_REMOTE", -1)

std::int32_t clsAPI_Interface::API_ENTRY(const std::wstring& strtempfd,
                                         std::int16_t& lResult) try {
  operations::EntryStart start = operations::StartSessionEntry(Begin(), strtempfd);
  if (start.completed) lResult = 1;
  return start.handle;
} TAVRINE_CATCH_RETURN(L"API_ENTRY", -1)

std::int32_t clsAPI_Interface::API_ENTRY_RESTORE(const std::wstring& destPath,
                                                 const std::wstring& parentPath,
                                                 const std::wstring& tempPath) try {
  return operations::StartRestore(Begin(), destPath, parentPath, tempPath);
} TAVRINE_CATCH_RETURN(L"API_ENTRY_RESTORE", -1)

std::int32_t clsAPI_Interface::API_GETVERSIONS(const std::wstring& filepath,
                                               std::wstring& pstrtemp) try {
  operations::VersionsResult versions = operations::FetchVersions(Begin(), filepath);
  pstrtemp = versions.folder;
  return versions.result;
} TAVRINE_CATCH_RETURN(L"API_GETVERSIONS", -1)

std::int32_t clsAPI_Interface::API_DELETE_REMOTE_FILE(const std::wstring& sInputDelete) try {
  return operations::DeleteRemote(Begin(), sInputDelete);
} TAVRINE_CATCH_RETURN(L"API_DELETE_REMOTE_FILE", -1)

std::int32_t clsAPI_Interface::API_FirewallSettings() try {
  return operations::ProbeFirewall(session_ ? session_->connection().server_address()
                                            : std::wstring());
} TAVRINE_CATCH_RETURN(L"API_FirewallSettings", 0)

}  // namespace tavrine::contract
