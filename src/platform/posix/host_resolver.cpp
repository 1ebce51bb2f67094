#include "platform/host_resolver.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <memory>

#include "platform/path.h"

namespace tavrine::platform {

namespace {

struct AddrInfoFree {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

std::wstring DottedText(const in_addr& address) {
  char text[INET_ADDRSTRLEN] = {};
  if (!inet_ntop(AF_INET, &address, text, sizeof text)) return {};
  return Utf8ToWide(text);
}

}  // namespace

ResolveResult ResolveHostToIPv4(const std::wstring& host) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* raw = nullptr;
  if (host.empty() || getaddrinfo(WideToUtf8(host).c_str(), nullptr, &hints, &raw) != 0) {
    return {ResolveStatus::kNotFound, {}};
  }
  std::unique_ptr<addrinfo, AddrInfoFree> list(raw);
  for (addrinfo* entry = list.get(); entry; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET && entry->ai_addr) {
      const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ai_addr);
      return {ResolveStatus::kResolved, DottedText(address->sin_addr)};
    }
  }
  return {ResolveStatus::kNotFound, {}};
}

ResolveResult ResolveIPv4ToHost(const std::wstring& address) {
  if (!IsDottedIPv4(address)) return {ResolveStatus::kNotFound, {}};
  sockaddr_in socket_address{};
  socket_address.sin_family = AF_INET;
  if (inet_pton(AF_INET, WideToUtf8(address).c_str(), &socket_address.sin_addr) != 1) {
    return {ResolveStatus::kNotFound, {}};
  }
  char host[NI_MAXHOST] = {};
  if (getnameinfo(reinterpret_cast<const sockaddr*>(&socket_address), sizeof socket_address, host,
                  sizeof host, nullptr, 0, NI_NAMEREQD) != 0) {
    return {ResolveStatus::kNotFound, {}};
  }
  return {ResolveStatus::kResolved, Utf8ToWide(host)};
}

}  // namespace tavrine::platform
