#include "platform/host_resolver.h"

#include <arpa/inet.h>

#include "platform/host_lookup.h"
#include "platform/path.h"

namespace tavrine::platform {

ResolveResult ResolveHostToIPv4(const std::wstring& host) {
  if (host.empty()) return {ResolveStatus::kNotFound, {}};
  return LookUpIPv4(WideToUtf8(host));
}

ResolveResult ResolveIPv4ToHost(const std::wstring& address) {
  if (!IsDottedIPv4(address)) return {ResolveStatus::kNotFound, {}};
  IPv4Bytes bytes{};
  if (inet_pton(AF_INET, WideToUtf8(address).c_str(), bytes.data()) != 1) {
    return {ResolveStatus::kNotFound, {}};
  }
  return LookUpHostName(bytes, Utf8ToWide);
}

}  // namespace tavrine::platform
