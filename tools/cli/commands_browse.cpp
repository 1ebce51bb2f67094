// ls, tree, versions, machines
#include <iostream>

#include "browsing/browsing_state.h"
#include "contract/tavrine_enum.h"
#include "commands.h"
#include "format.h"
#include "remote_walk.h"

namespace tavrine::cli {

namespace {

// Loads the listing once for this run (engine code 122, or the files on disk).
bool LoadRemoteListing(contract::TavrinEenum& browser) {
  Progress("Fetching the remote listing...");
  bool loaded = browser.TavrinEInit() != 0;
  EndProgress();
  if (!loaded && !ReportEngineNotStarted()) std::cerr << "error: the remote listing could not be fetched\n";
  return loaded;
}

void PrintEntry(const RemoteEntry& entry) {
  std::string name = Utf8(entry.name) + (entry.is_folder ? "\\" : "");
  if (entry.is_folder || !entry.has_line) {
    std::cout << PadRight("<dir>", 10) << "  " << PadRight("", 19) << "  " << PadLeft("", 4) << "  "
              << name << "\n";
    return;
  }
  std::cout << PadLeft(HumanSize(static_cast<double>(entry.data.nFileSize)), 10) << "  "
            << FileTimeText(entry.data.ftLastWriteTime) << "  "
            << PadLeft("v" + std::to_string(entry.data.nVersion), 4) << "  " << name << "\n";
}

void PrintTree(contract::TavrinEenum& browser, const std::wstring& folder,
               const std::string& indent, std::size_t& files, std::size_t& folders) {
  auto entries = ListFolder(browser, folder);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    bool last = i + 1 == entries.size();
    const RemoteEntry& entry = entries[i];
    std::cout << indent << (last ? "`-- " : "|-- ") << Utf8(entry.name);
    if (entry.is_folder) {
      std::cout << "\\\n";
      ++folders;
      PrintTree(browser, entry.folder_path, indent + (last ? "    " : "|   "), files, folders);
    } else {
      std::cout << "  (" << HumanSize(static_cast<double>(entry.data.nFileSize)) << ", "
                << entry.data.nVersion << " version" << (entry.data.nVersion == 1 ? "" : "s")
                << ")\n";
      ++files;
    }
  }
}

}  // namespace

int CommandLs(const Arguments& args) {
  if (!RequireSession()) return kExitNotReady;
  contract::TavrinEenum browser;
  if (!LoadRemoteListing(browser)) return kExitFailed;
  if (args.positional().empty()) {
    for (const auto& name : TopLevelNames()) std::cout << Utf8(name) << "\n";
    return kExitOk;
  }
  int status = kExitOk;
  for (const auto& path : args.positional()) {
    std::wstring folder = FolderPath(Wide(path));
    auto entries = ListFolder(browser, folder);
    if (entries.empty()) {
      std::cerr << "error: " << path << ": no such remote folder, or it is empty\n";
      status = kExitFailed;
      continue;
    }
    if (args.positional().size() > 1) std::cout << Utf8(folder) << ":\n";
    for (const auto& entry : entries) PrintEntry(entry);
  }
  return status;
}

int CommandTree(const Arguments& args) {
  if (!RequireSession()) return kExitNotReady;
  contract::TavrinEenum browser;
  if (!LoadRemoteListing(browser)) return kExitFailed;
  std::vector<std::wstring> roots;
  for (const auto& path : args.positional()) roots.push_back(FolderPath(Wide(path)));
  if (roots.empty()) {
    for (const auto& name : TopLevelNames()) roots.push_back(FolderPath(name));
  }
  std::size_t files = 0, folders = 0;
  for (const auto& root : roots) {
    std::cout << Utf8(root) << "\n";
    PrintTree(browser, root, "", files, folders);
  }
  std::cout << "\n" << folders << " folders, " << files << " files\n";
  return kExitOk;
}

int CommandVersions(const Arguments& args) {
  if (args.positional().size() != 1) {
    std::cerr << "usage: tavrine versions REMOTE-FILE\n";
    return kExitUsage;
  }
  if (!RequireSession()) return kExitNotReady;
  contract::TavrinEenum browser;
  browsing::FileVersions version;
  std::wstring file = Wide(args.positional()[0]);
  Progress("Fetching the versions...");
  std::int32_t at = browser.GetFirstVersion(file, version);
  EndProgress();
  if (at == -1) {
    if (ReportEngineNotStarted()) return kExitFailed;
    std::cerr << "error: no versions of " << args.positional()[0] << "\n";
    return kExitFailed;
  }
  std::cout << PadLeft("version", 7) << "  " << PadRight("modified (UTC)", 19) << "  "
            << PadLeft("size", 10) << "\n";
  for (; at != -1; at = browser.GetNextVersion(version)) {
    std::cout << PadLeft(std::to_string(version.nVersion), 7) << "  "
              << FileTimeText(version.ftLastWriteTime) << "  "
              << PadLeft(HumanSize(static_cast<double>(version.nFileSize)), 10) << "\n";
  }
  return kExitOk;
}

int CommandMachines(const Arguments&) {
  if (!RequireSession()) return kExitNotReady;
  contract::TavrinEenum browser;
  Progress("Fetching the computers of the account...");
  std::int32_t answer = browser.GetMultiplePCInfo();
  std::int32_t count = browser.ReadMachineList();
  EndProgress();
  if (count < 0) return Fail("the computers could not be listed", answer);
  for (const auto& name : browsing::CurrentBrowsingState().machine_list) {
    std::cout << Utf8(name) << "\n";
  }
  return kExitOk;
}

}  // namespace tavrine::cli
