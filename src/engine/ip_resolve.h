#pragma once
#include <string>

namespace tavrine::engine {

// The host's first IPv4 address as dotted text, or "". When the socket layer
// cannot serve, shows "Failed to open Socket." and returns "".
std::wstring ResolveHostAddress(const std::wstring& host);

}  // namespace tavrine::engine
