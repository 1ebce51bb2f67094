#pragma once
#include <array>
#include <string>
#include <string_view>

#include "platform/host_resolver.h"

// The name-service calls the POSIX and Windows resolvers make alike. Host
// names are narrow in the platform's own encoding; on Windows the caller has
// started the socket layer.
namespace tavrine::platform {

using IPv4Bytes = std::array<unsigned char, 4>;  // network order

// The first IPv4 address getaddrinfo finds for `host`, dotted.
ResolveResult LookUpIPv4(const std::string& host);
// The name getnameinfo finds for `address` (a name is required), made wide by `widen`.
ResolveResult LookUpHostName(const IPv4Bytes& address, std::wstring (*widen)(std::string_view));

}  // namespace tavrine::platform
