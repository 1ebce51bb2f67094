// The version resources of the DLL and the programs beside it: one version,
// the project's, in the numbers and the texts; each binary's own file name.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace {

struct VersionInfo {
  std::vector<BYTE> block;

  std::wstring Text(const wchar_t* name) const {
    const std::wstring path = std::wstring(L"\\StringFileInfo\\040904b0\\") + name;
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), path.c_str(), &value, &length) || !value) return L"<missing>";
    return std::wstring(static_cast<const wchar_t*>(value));
  }
  std::wstring FixedVersion() const {
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), L"\\", &value, &length) || length < sizeof(VS_FIXEDFILEINFO)) return L"";
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value);
    auto dotted = [](DWORD ms, DWORD ls) {
      return std::to_wstring(HIWORD(ms)) + L"." + std::to_wstring(LOWORD(ms)) + L"." + std::to_wstring(HIWORD(ls)) +
             L"." + std::to_wstring(LOWORD(ls));
    };
    return dotted(fixed->dwFileVersionMS, fixed->dwFileVersionLS) + L" / " +
           dotted(fixed->dwProductVersionMS, fixed->dwProductVersionLS);
  }
};

VersionInfo ReadVersionInfo(const std::wstring& path) {
  VersionInfo info;
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
  if (size == 0) return info;
  info.block.resize(size);
  if (!GetFileVersionInfoW(path.c_str(), 0, size, info.block.data())) info.block.clear();
  return info;
}

std::wstring Wide(const char* text) { return std::wstring(text, text + std::char_traits<char>::length(text)); }

TEST(VersionResource, EveryBinaryCarriesTheProjectVersionAndItsOwnName) {
  const std::wstring version = Wide(TAVRINE_VERSION);
  const std::wstring fixed = Wide(TAVRINE_VERSION ".0") + L" / " + Wide(TAVRINE_VERSION ".0");
  for (const wchar_t* file : {L"TavrinEUI.dll", L"TavrinEClient.exe", L"TavrinECompareList.exe", L"tavrine.exe",
                              L"tavrine-regtable.exe", L"com_tests.exe"}) {
    SCOPED_TRACE(file);
    const VersionInfo info = ReadVersionInfo((tavrine::testing::TestProgramFolder() / file).wstring());
    ASSERT_FALSE(info.block.empty()) << "no version resource";
    EXPECT_EQ(info.FixedVersion(), fixed);
    EXPECT_EQ(info.Text(L"FileVersion"), version);
    EXPECT_EQ(info.Text(L"ProductVersion"), version);
    EXPECT_EQ(info.Text(L"OriginalFilename"), file);
    EXPECT_EQ(info.Text(L"ProductName"), Wide(TAVRINE_PRODUCT_NAME));
    EXPECT_NE(info.Text(L"FileDescription"), L"<missing>");
  }
  // The DLL describes itself.
  const VersionInfo dll = ReadVersionInfo((tavrine::testing::TestProgramFolder() / L"TavrinEUI.dll").wstring());
  EXPECT_EQ(dll.Text(L"FileDescription"), L"TavrinEUI interface library (COM server)");
  EXPECT_EQ(dll.Text(L"InternalName"), L"TavrinEUI");
}

}  // namespace
