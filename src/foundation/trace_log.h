#pragma once
#include <string>
#include <string_view>

namespace tavrine::foundation {

// Appends "mm-dd-yyyy HH:mm:ss <message>" CRLF to
// <work root>Log<sep><installation name>UI.txt. Never throws; a line that
// cannot be written is lost silently.
void Trace(const std::wstring& message) noexcept;

// "[EXCEPTION] <procedure>() : <description>"
void TraceException(std::wstring_view procedure, std::wstring_view description) noexcept;
// "[EXCEPTION] <class> :: <procedure>() : <description>"
void TraceException(std::wstring_view class_name, std::wstring_view procedure,
                    std::wstring_view description) noexcept;

// The description of a caught exception as the trace line shows it.
std::wstring DescribeCurrentException() noexcept;

std::wstring TraceFilePath();

}  // namespace tavrine::foundation
