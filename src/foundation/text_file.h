#pragma once
#include <optional>
#include <string>
#include <vector>

namespace tavrine::foundation {

// Text files with explicit encodings, never the C runtime's text mode.

// UTF-16LE with BOM, each line ended by CRLF. Replaces the file. False on failure.
bool WriteUtf16Lines(const std::wstring& file, const std::vector<std::wstring>& lines);

// Lines of a file read as ANSI (CR, LF or CRLF end a line); nullopt when it
// cannot be opened.
std::optional<std::vector<std::wstring>> ReadAnsiLines(const std::wstring& file);

// Lines of a UTF-16LE file (BOM optional, dropped); nullopt when it cannot be opened.
std::optional<std::vector<std::wstring>> ReadUtf16Lines(const std::wstring& file);

// Appends one ANSI line with CRLF, creating the file. False on failure.
bool AppendAnsiLine(const std::wstring& file, const std::wstring& line);

}  // namespace tavrine::foundation
