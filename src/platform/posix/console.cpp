#include "platform/console.h"

namespace tavrine::platform {

void UseUtf8Console() {}

}  // namespace tavrine::platform
