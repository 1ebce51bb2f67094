#include "engine/result_file.h"

#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "foundation/trace_log.h"

namespace tavrine::engine {

using foundation::JoinPath;

ResultFile ReadResultFile(const std::wstring& folder) {
  ResultFile result;
  auto read = [&folder](const wchar_t* name) -> std::optional<std::vector<std::wstring>> {
    if (folder.empty()) return std::nullopt;
    return foundation::ReadAnsiLines(JoinPath(folder, name));
  };
  if (auto lines = read(L"DLLOutput.txt"); lines && !lines->empty()) {
    result.value = foundation::ParseNumber(lines->front());
    result.answered = true;
  } else if (auto info = read(L"DLLOutputInfo.txt"); info && !info->empty()) {
    result.value = foundation::ParseNumber(info->front());
    if (info->size() > 1) result.description = (*info)[1];
  }
  if (!result.value)
    foundation::Trace(L"ReadDLLOutputFile :: no result code from the engine in " + folder);
  return result;
}

bool ResultFilePresent(const std::wstring& folder) {
  return foundation::FileExists(JoinPath(folder, L"DLLOutput.txt")) ||
         foundation::FileExists(JoinPath(folder, L"DLLOutputInfo.txt"));
}

void DeleteExchangeFiles(const std::wstring& folder) {
  if (folder.empty()) return;
  for (const wchar_t* name : {L"DLLOutput.txt", L"DLLOutput1.txt", L"DLLInput.txt",
                              L"DLLOutputInfo.txt"}) {
    foundation::DeleteFileUnforced(JoinPath(folder, name));
  }
}

}  // namespace tavrine::engine
