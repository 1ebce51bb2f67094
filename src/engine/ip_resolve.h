#pragma once
#include <string>

namespace tavrine::engine {

// Host-name resolution for the server address.
class clsIPResolve {
 public:
  // The host's first IPv4 address as dotted text, or "". When the socket layer
  // cannot serve, shows "Failed to open Socket." and returns "".
  std::wstring GetIPFromHostName(const std::wstring& host);
  std::wstring GetHostNameFromIP(const std::wstring& address);
  bool IsValidIPAddress(const std::wstring& address);
};

}  // namespace tavrine::engine
