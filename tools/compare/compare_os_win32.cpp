#include <windows.h>

#include "compare_os.h"

// GUI subsystem: a hidden start never opens a console window.
int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  return tavrine::refcompare::RunCompareProgram(tavrine::reftools::ParameterTextFromCommandLine());
}
