// List the remote backup and walk it folder by folder.
//
//   tree.exe [REMOTE-FOLDER...]   no folder: every computer of the account
//
// Calls: TavrinEenum.TavrinEInit (engine code 122: the listing),
//        clsClient.GetUserProfile("Count", "List") for the computers,
//        TavrinEenum.TavrinEFindFirstFile / TavrinENextFile per folder,
//        TavrinEenum.TavrinEExitInstance.
#include <map>
#include <sstream>

#include "sample_support.h"

namespace {

// The find record owns its two strings; each find call may replace them.
struct FindData {
  TavrinE_WIN32_FIND_DATA data{};
  FindData() = default;
  FindData(const FindData&) = delete;
  FindData& operator=(const FindData&) = delete;
  ~FindData() {
    SysFreeString(data.cFilename);
    SysFreeString(data.strUnimode);
  }
  std::wstring Name() const {
    return data.cFilename ? std::wstring(data.cFilename, SysStringLen(data.cFilename)) : std::wstring();
  }
};

struct Child {
  std::wstring name;
  bool folder = false;
  long long size = 0;
  short versions = 0;
};

// A find hands out every path below the folder, relative to it; the first
// name of each is the folder's own child, and a path with a "\" in it lies
// in a subfolder.
std::vector<Child> Children(_TavrinEenum* browser, const std::wstring& folder) {
  std::map<std::wstring, Child> children;
  FindData found;
  sample::Bstr folder_text(folder);
  sample::Variant first;
  sample::Check(browser->TavrinEFindFirstFile(folder_text.get(), &found.data, first.get()), "TavrinEFindFirstFile");
  for (LONG at = first.AsLong(); at != -1;) {
    std::wstring path = found.Name();
    const std::size_t start = path.find_first_not_of(L'\\');
    if (start != std::wstring::npos) {
      path.erase(0, start);
      const std::size_t separator = path.find(L'\\');
      Child& child = children[path.substr(0, separator)];
      child.name = path.substr(0, separator);
      if (separator != std::wstring::npos) {
        child.folder = true;
      } else {
        child.size = found.data.nFileSize.int64;  // CURRENCY used as a plain 64-bit count
        child.versions = found.data.nVersion;
      }
    }
    sample::Check(browser->TavrinENextFile(&found.data, &at), "TavrinENextFile");
  }
  std::vector<Child> sorted;
  for (auto& [name, child] : children) sorted.push_back(child);
  return sorted;
}

void Walk(_TavrinEenum* browser, const std::wstring& folder, const std::wstring& indent, int& folders, int& files) {
  for (const Child& child : Children(browser, folder)) {
    if (child.folder) {
      sample::Say(indent + child.name + L"\\");
      ++folders;
      Walk(browser, folder + child.name + L"\\", indent + L"    ", folders, files);
    } else {
      sample::Say(indent + child.name + L"  " + std::to_wstring(child.size) + L" bytes, " +
                  std::to_wstring(child.versions) + L" version(s)");
      ++files;
    }
  }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  return sample::Run([&] {
    auto browser = sample::Create<_TavrinEenum>(L"TavrinEUI.TavrinEenum", IID__TavrinEenum);
    short loaded = 0;
    sample::Check(browser->TavrinEInit(&loaded), "TavrinEInit");  // blocks while the engine lists
    if (loaded == 0) {
      sample::Say(L"tree: the listing could not be fetched; see the trace log");
      return 1;
    }

    // One computer: "Count" is 0 and paths start with the drive ("C:\").
    // Several: "List" is "NAME|n|1;NAME|n|1;" and paths start with "NAME\".
    auto client = sample::Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    sample::Bstr count_name(L"Count"), list_name(L"List"), count, list;
    sample::Check(client->GetUserProfile(count_name.get(), count.Out()), "GetUserProfile");
    sample::Check(client->GetUserProfile(list_name.get(), list.Out()), "GetUserProfile");
    std::vector<std::wstring> tops;
    for (int i = 1; i < argc; ++i) tops.push_back(std::wstring(argv[i]) + (std::wstring(argv[i]).back() == L'\\' ? L"" : L"\\"));
    std::wstringstream items(list.str());
    for (std::wstring item; argc == 1 && std::getline(items, item, L';');) {
      if (!item.empty()) tops.push_back(item.substr(0, item.find(L'|')) + L"\\");
    }
    if (tops.empty()) {
      // One computer: its drives are the top folders.
      for (const Child& drive : Children(browser.get(), L"")) tops.push_back(drive.name + L"\\");
    }

    int folders = 0, files = 0;
    for (const std::wstring& top : tops) {
      sample::Say(top);
      Walk(browser.get(), top, L"    ", folders, files);
    }
    sample::Say(L"tree: " + std::to_wstring(tops.size()) + L" top folder(s), " + std::to_wstring(folders) +
                L" folders, " + std::to_wstring(files) + L" files");
    sample::Check(browser->TavrinEExitInstance(), "TavrinEExitInstance");
    return 0;
  });
}
