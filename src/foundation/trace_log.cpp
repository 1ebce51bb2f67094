#include "foundation/trace_log.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "foundation/text_file.h"
#include "foundation/time_format.h"
#include "platform/path.h"
#include "platform/services.h"

namespace tavrine::foundation {

std::wstring TraceFilePath() {
  std::wstring installation_name = ReadConfigValue(L"ProductInfo", L"ProductInstallationName");
  std::wstring work_root = ComputeWorkRoot();
  ThreadState().work_root = work_root;
  return work_root + L"Log" + platform::kPathSeparator + installation_name + L"UI.txt";
}

namespace {

// The trace writer never throws: a line that cannot be made or written (no
// memory, no disk) is lost, and the caller never hears of it.
template <class Body>
void WithoutThrowing(Body&& body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

void WriteLine(const std::wstring& message) {
  std::wstring file = TraceFilePath();
  // The Log folder, and those of an installation name with separators of its
  // own; when they cannot be made, the append below fails and the line is lost.
  std::error_code ignored;
  std::filesystem::create_directories(platform::ToFsPath(file).parent_path(), ignored);
  AppendAnsiLine(file, FormatTraceTimestamp(platform::CurrentClock().Now()) + L" " + message);
}

std::wstring ExceptionLine(std::wstring_view procedure, std::wstring_view description) {
  std::wstring line = L"[EXCEPTION] ";
  line.append(procedure).append(L"() : ").append(description);
  return line;
}

}  // namespace

void Trace(const std::wstring& message) noexcept {
  WithoutThrowing([&] { WriteLine(message); });
}

void TraceException(std::wstring_view procedure, std::wstring_view description) noexcept {
  WithoutThrowing([&] { WriteLine(ExceptionLine(procedure, description)); });
}

void TraceException(std::wstring_view class_name, std::wstring_view procedure,
                    std::wstring_view description) noexcept {
  WithoutThrowing([&] {
    std::wstring scoped(class_name);
    scoped.append(L" :: ").append(procedure);
    WriteLine(ExceptionLine(scoped, description));
  });
}

std::wstring DescribeCurrentException() noexcept {
  const char* what = nullptr;
  try {
    throw;
  } catch (const std::exception& error) {
    what = error.what();  // lives as long as the caller's handler
  } catch (...) {
    return L"Unknown error";
  }
  std::wstring text;
  // Without memory for the description the line says nothing after the colon.
  WithoutThrowing([&] {
    std::wstring widened;
    for (const char* p = what; *p; ++p) widened.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*p)));
    text = std::move(widened);
  });
  return text;
}

}  // namespace tavrine::foundation
