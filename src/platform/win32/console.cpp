#include "platform/console.h"

#include <windows.h>

namespace tavrine::platform {

void UseUtf8Console() { SetConsoleOutputCP(CP_UTF8); }

bool StderrIsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

}  // namespace tavrine::platform
