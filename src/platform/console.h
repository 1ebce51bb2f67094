#pragma once

namespace tavrine::platform {

// Lets a console program write UTF-8 text (Windows consoles default to an OEM code page).
void UseUtf8Console();

// Whether standard error is a terminal (progress lines are only for people).
bool StderrIsTerminal();

}  // namespace tavrine::platform
