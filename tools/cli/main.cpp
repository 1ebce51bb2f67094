// tavrine: drives the library from a terminal the way the Explorer side does.
#include <cstring>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "format.h"
#include "platform/console.h"
#include "platform/services.h"

namespace {

using namespace tavrine::cli;

struct Command {
  const char* name;
  int (*run)(const Arguments&);
  std::vector<std::string> value_options;
  const char* usage;
};

const Command kCommands[] = {
    {"login", CommandLogin, {"password", "key", "account", "server"},
     "login USER [--password P | --password-stdin] [--key KEY | --default-key] [--account NAME]"},
    {"logout", CommandLogout, {}, "logout"},
    {"whoami", CommandWhoami, {}, "whoami"},
    {"quota", CommandQuota, {}, "quota"},
    {"ls", CommandLs, {}, "ls [REMOTE-FOLDER...]      (no folder: the drives or computers)"},
    {"tree", CommandTree, {}, "tree [REMOTE-FOLDER...]"},
    {"versions", CommandVersions, {}, "versions REMOTE-FILE"},
    {"restore", CommandRestore, {"to"}, "restore REMOTE-PATH --to LOCAL-FOLDER"},
    {"rm", CommandRm, {}, "rm REMOTE-PATH..."},
    {"backup", CommandBackup, {}, "backup LOCAL-FILE-OR-FOLDER..."},
    {"machines", CommandMachines, {}, "machines"},
    {"message", CommandMessage, {}, "message CODE"},
};

void PrintHelp(std::ostream& out) {
  out << "usage: tavrine [--install FOLDER] COMMAND [ARGUMENTS]\n"
         "       tavrine --version\n\n"
         "Talks to the online backup through the client engine beside the library.\n"
         "--install FOLDER  the library's folder (Configuration.ini, the engine); default:\n"
         "                  the folder of this program\n\ncommands:\n";
  for (const auto& command : kCommands) out << "  " << command.usage << "\n";
  out << "\nRemote paths use backslashes (C:\\Docs\\a.txt); with several computers they start\n"
         "with the computer's name. Exit codes: 0 done, 1 usage, 2 failed, 3 not logged in.\n";
}

}  // namespace

int main(int argc, char** argv) {
  tavrine::platform::UseUtf8Console();
  std::vector<std::string> words(argv + 1, argv + argc);
  std::optional<std::wstring> install;
  while (!words.empty() && words.front().rfind("--", 0) == 0) {
    if (words.front() == "--help" || words.front() == "-h") {
      PrintHelp(std::cout);
      return kExitOk;
    }
    if (words.front() == "--version") {
      std::cout << "tavrine " TAVRINE_VERSION "\n";
      return kExitOk;
    }
    if (words.front() == "--install" && words.size() > 1) {
      install = Wide(words[1]);
      words.erase(words.begin(), words.begin() + 2);
      continue;
    }
    std::cerr << "unknown option " << words.front() << "\n";
    return kExitUsage;
  }
  if (words.empty()) {
    PrintHelp(std::cerr);
    return kExitUsage;
  }

  ConsoleUi console;
  tavrine::platform::Services seams;
  seams.ui = &console;
  seams.launcher = &EngineStarts();
  seams.module_folder = install;
  tavrine::platform::ScopedServices scoped(seams);

  for (const auto& command : kCommands) {
    if (words.front() != command.name) continue;
    Arguments args(std::vector<std::string>(words.begin() + 1, words.end()), command.value_options);
    if (args.error()) {
      std::cerr << "error: " << *args.error() << "\nusage: tavrine " << command.usage << "\n";
      return kExitUsage;
    }
    if (args.Has("help")) {
      std::cout << "usage: tavrine " << command.usage << "\n";
      return kExitOk;
    }
    try {
      return command.run(args);
    } catch (const std::exception& error) {
      EndProgress();
      std::cerr << "error: " << error.what() << "\n";
      return kExitFailed;
    }
  }
  std::cerr << "unknown command " << words.front() << "\n";
  PrintHelp(std::cerr);
  return kExitUsage;
}
