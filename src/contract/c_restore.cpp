#include "contract/c_restore.h"

#include "contract/failure_boundary.h"
#include "engine/session.h"
#include "operations/remote_operations.h"
#include "operations/version_request.h"

namespace tavrine::contract {

std::int32_t CRestore::W_Restore(const std::wstring& destPath, const std::wstring& parentPath,
                                 const std::wstring& tempPath) try {
  engine::Session session = engine::Session::Open();
  return operations::StartRestore(session, destPath, parentPath, tempPath);
} TAVRINE_CATCH_RETURN(L"W_Restore", -1)

std::int32_t CRestore::W_GetVersions(const std::wstring& filename) try {
  return operations::RequestVersions(filename);
} TAVRINE_CATCH_RETURN(L"W_GetVersions", -1)

}  // namespace tavrine::contract
