#include "foundation/trace_log.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>

#include "foundation/settings.h"
#include "foundation/text_file.h"
#include "foundation/time_format.h"
#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::foundation {

std::wstring TraceFilePath() {
  std::wstring installation_name = ReadConfigValue(L"ProductInfo", L"ProductInstallationName");
  std::wstring work_root = ComputeWorkRoot();
  CurrentSettings().work_root = work_root;
  return work_root + L"Log" + platform::kPathSeparator + installation_name + L"UI.txt";
}

void Trace(const std::wstring& message) noexcept {
  try {
    std::wstring file = TraceFilePath();
    // The Log folder, and those of an installation name with separators of its
    // own; when they cannot be made, the append below fails and the line is lost.
    std::error_code ignored;
    std::filesystem::create_directories(platform::ToFsPath(file).parent_path(), ignored);
    AppendAnsiLine(file, FormatTraceTimestamp(platform::CurrentClock().Now()) + L" " + message);
  } catch (...) {
    // A trace line that cannot be written is lost; the caller never hears of it.
  }
}

void TraceException(std::wstring_view procedure, std::wstring_view description) noexcept {
  try {
    std::wstring line = L"[EXCEPTION] ";
    line.append(procedure).append(L"() : ").append(description);
    Trace(line);
  } catch (...) {
  }
}

void TraceException(std::wstring_view class_name, std::wstring_view procedure,
                    std::wstring_view description) noexcept {
  try {
    std::wstring scoped(class_name);
    scoped.append(L" :: ").append(procedure);
    TraceException(scoped, description);
  } catch (...) {
  }
}

std::wstring DescribeCurrentException() noexcept {
  try {
    throw;
  } catch (const std::exception& error) {
    try {
      std::wstring text;
      for (const char* p = error.what(); *p; ++p) {
        text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*p)));
      }
      return text;
    } catch (...) {
      return L"";
    }
  } catch (...) {
    return L"Unknown error";
  }
}

}  // namespace tavrine::foundation
