#pragma once
#include "cli_context.h"

namespace tavrine::cli {

int CommandLogin(const Arguments& args);
int CommandLogout(const Arguments& args);
int CommandWhoami(const Arguments& args);
int CommandQuota(const Arguments& args);
int CommandMessage(const Arguments& args);
int CommandLs(const Arguments& args);
int CommandTree(const Arguments& args);
int CommandVersions(const Arguments& args);
int CommandMachines(const Arguments& args);
int CommandRestore(const Arguments& args);
int CommandRm(const Arguments& args);
int CommandBackup(const Arguments& args);

}  // namespace tavrine::cli
