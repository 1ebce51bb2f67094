#include "platform/console.h"

#include <windows.h>

namespace tavrine::platform {

void UseUtf8Console() { SetConsoleOutputCP(CP_UTF8); }

}  // namespace tavrine::platform
