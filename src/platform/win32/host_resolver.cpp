#include "platform/host_resolver.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <memory>

#include "platform/code_page.h"

namespace tavrine::platform {

namespace {

// One WSAStartup/WSACleanup pair per lookup.
class SocketLayer {
 public:
  SocketLayer() {
    WSADATA data{};
    started_ = WSAStartup(MAKEWORD(2, 2), &data) == 0;
  }
  ~SocketLayer() {
    if (started_) WSACleanup();
  }
  SocketLayer(const SocketLayer&) = delete;
  SocketLayer& operator=(const SocketLayer&) = delete;

  bool started() const { return started_; }

 private:
  bool started_ = false;
};

struct AddrInfoFree {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

std::wstring DottedText(const in_addr& address) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&address);
  return std::to_wstring(bytes[0]) + L"." + std::to_wstring(bytes[1]) + L"." +
         std::to_wstring(bytes[2]) + L"." + std::to_wstring(bytes[3]);
}

}  // namespace

ResolveResult ResolveHostToIPv4(const std::wstring& host) {
  SocketLayer sockets;
  if (!sockets.started()) return {ResolveStatus::kSocketLayerFailed, {}};
  if (host.empty()) return {ResolveStatus::kNotFound, {}};
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* raw = nullptr;
  if (getaddrinfo(WideToAnsi(host).c_str(), nullptr, &hints, &raw) != 0) {
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
  SocketLayer sockets;
  if (!sockets.started()) return {ResolveStatus::kSocketLayerFailed, {}};
  if (!IsDottedIPv4(address)) return {ResolveStatus::kNotFound, {}};
  sockaddr_in socket_address{};
  socket_address.sin_family = AF_INET;
  auto* bytes = reinterpret_cast<unsigned char*>(&socket_address.sin_addr);
  std::size_t part = 0;
  for (wchar_t c : address) {
    if (c == L'.') {
      ++part;
    } else {
      bytes[part] = static_cast<unsigned char>(bytes[part] * 10 + (c - L'0'));
    }
  }
  char host[NI_MAXHOST] = {};
  if (getnameinfo(reinterpret_cast<const sockaddr*>(&socket_address), sizeof socket_address, host,
                  sizeof host, nullptr, 0, NI_NAMEREQD) != 0) {
    return {ResolveStatus::kNotFound, {}};
  }
  return {ResolveStatus::kResolved, AnsiToWide(host)};
}

}  // namespace tavrine::platform
