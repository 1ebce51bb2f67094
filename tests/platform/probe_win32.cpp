#include <windows.h>

#include <filesystem>

#include "probe_common.h"

using namespace tavrine::testing;

namespace {

std::string Utf8(const std::wstring& wide) {
  if (wide.empty()) return {};
  int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr,
                                   0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(), length,
                      nullptr, nullptr);
  return utf8;
}

std::wstring Wide(const std::string& utf8) {
  if (utf8.empty()) return {};
  int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), length);
  return wide;
}

// The command line is the program (quoted or not), one space, then the parameters.
std::wstring CommandTail() {
  std::wstring line = GetCommandLineW();
  std::size_t end = 0;
  if (!line.empty() && line[0] == L'"') {
    end = line.find(L'"', 1);
    end = end == std::wstring::npos ? line.size() : end + 1;
  } else {
    end = line.find_first_of(L" \t");
    if (end == std::wstring::npos) end = line.size();
  }
  if (end < line.size() && line[end] == L' ') ++end;
  return line.substr(end);
}

}  // namespace

int main() {
  std::string tail = Utf8(CommandTail());
  probe::Request request;
  if (!probe::Parse(tail, request)) return 3;
  probe::SleepFor(request.ms);
  wchar_t cwd[MAX_PATH * 4] = {};
  if (!GetCurrentDirectoryW(MAX_PATH * 4, cwd)) return 4;
  std::ofstream out(std::filesystem::path(Wide(request.folder)) / L"probe.txt", std::ios::binary);
  probe::WriteReport(out, tail, Utf8(cwd));
  return out ? 0 : 5;
}
