#include "platform/host_lookup.h"

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

#include <cstring>
#include <memory>

namespace tavrine::platform {

namespace {

struct AddrInfoFree {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

std::wstring DottedText(const IPv4Bytes& bytes) {
  return std::to_wstring(bytes[0]) + L"." + std::to_wstring(bytes[1]) + L"." +
         std::to_wstring(bytes[2]) + L"." + std::to_wstring(bytes[3]);
}

}  // namespace

ResolveResult LookUpIPv4(const std::string& host) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* raw = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &raw) != 0) return {ResolveStatus::kNotFound, {}};
  std::unique_ptr<addrinfo, AddrInfoFree> list(raw);
  for (addrinfo* entry = list.get(); entry; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET && entry->ai_addr) {
      IPv4Bytes bytes{};
      std::memcpy(bytes.data(), &reinterpret_cast<const sockaddr_in*>(entry->ai_addr)->sin_addr,
                  bytes.size());
      return {ResolveStatus::kResolved, DottedText(bytes)};
    }
  }
  return {ResolveStatus::kNotFound, {}};
}

ResolveResult LookUpHostName(const IPv4Bytes& address, std::wstring (*widen)(std::string_view)) {
  sockaddr_in socket_address{};
  socket_address.sin_family = AF_INET;
  std::memcpy(&socket_address.sin_addr, address.data(), address.size());
  char host[NI_MAXHOST] = {};
  if (getnameinfo(reinterpret_cast<const sockaddr*>(&socket_address), sizeof socket_address, host,
                  sizeof host, nullptr, 0, NI_NAMEREQD) != 0) {
    return {ResolveStatus::kNotFound, {}};
  }
  return {ResolveStatus::kResolved, widen(host)};
}

}  // namespace tavrine::platform
