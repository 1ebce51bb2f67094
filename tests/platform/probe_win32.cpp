#include <windows.h>

#include <filesystem>

#include "probe_common.h"

using namespace tavrine::testing;

namespace {

std::string Utf8(const std::wstring& wide) {
  std::u8string utf8 = std::filesystem::path(wide).u8string();
  return std::string(utf8.begin(), utf8.end());
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
  std::u8string folder(request.folder.begin(), request.folder.end());
  std::ofstream out(std::filesystem::path(folder) / L"probe.txt", std::ios::binary);
  probe::WriteReport(out, tail, Utf8(cwd));
  return out ? 0 : 5;
}
