#include "contract/tavrine_enum.h"

#include "contract/failure_boundary.h"

namespace tavrine::contract {

namespace {
// The version methods' lines have always named the history class.
constexpr const wchar_t* kHistory = browsing::kVersionTraceClass;
}  // namespace

std::int16_t TavrinEenum::TavrinEInit() try {
  return browser_.LoadFromEngine() ? 1 : 0;
} TAVRINE_CATCH_RETURN(L"TavrinEInit", 0)

void TavrinEenum::W_GetCurrentUser(std::wstring& strUserName) try {
  strUserName = browser_.user_name();
} TAVRINE_CATCH_LOG(L"W_GetCurrentUser")

std::int32_t TavrinEenum::TavrinEFindFirstFile(const std::wstring& strFileName, FindData& wd) try {
  return browser_.FindFirst(strFileName, wd);
} TAVRINE_CATCH_RETURN(L"TavrinEFindFirstFile", -1)

std::int32_t TavrinEenum::TavrinENextFile(FindData& wd) try {
  return browser_.FindNext(wd);
} TAVRINE_CATCH_RETURN(L"TavrinENextFile", -1)

void TavrinEenum::TavrinEExitInstance() try {
  browser_.Close();
} TAVRINE_CATCH_LOG(L"TavrinEExitInstance")

std::int16_t TavrinEenum::TavrinELocalRefresh() try {
  return browser_.LoadFromDisk() ? 1 : 0;
} TAVRINE_CATCH_RETURN(L"TavrinELocalRefresh", 0)

std::int32_t TavrinEenum::GetFirstVersion(const std::wstring& filename, FileVersions& sfirstVer) try {
  return browser_.versions().First(filename, sfirstVer);
} TAVRINE_CATCH_RETURN_IN(kHistory, L"GetFirstVersion", -1)

std::int32_t TavrinEenum::GetNextVersion(FileVersions& sfirstVer) try {
  return browser_.versions().Next(sfirstVer);
} TAVRINE_CATCH_RETURN_IN(kHistory, L"GetNextVersion", -1)

std::int32_t TavrinEenum::GetFileVersion(FileVersions& filever) try {
  return browser_.versions().Next(filever);
} TAVRINE_CATCH_RETURN_IN(kHistory, L"GetFileVersion", -1)

std::int32_t TavrinEenum::GetMultiplePCInfo() try {
  return browser_.QueryMachines();
} TAVRINE_CATCH_RETURN(L"GetMultiplePCInfo", -1)

std::int32_t TavrinEenum::ReadMachineList() try {
  return browser_.ReadMachines();
} TAVRINE_CATCH_RETURN(L"ReadMachineList", -1)

bool TavrinEenum::IsItemExists(const std::wstring& strval) try {
  return browser_.KnowsMachine(strval);
} TAVRINE_CATCH_RETURN(L"IsItemExists", false)

}  // namespace tavrine::contract
