#include "platform/console.h"

#include <unistd.h>

namespace tavrine::platform {

void UseUtf8Console() {}

bool StderrIsTerminal() { return isatty(STDERR_FILENO) == 1; }

}  // namespace tavrine::platform
