#include "platform/host_resolver.h"

#include <winsock2.h>

#include "platform/code_page.h"
#include "platform/host_lookup.h"

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

}  // namespace

ResolveResult ResolveHostToIPv4(const std::wstring& host) {
  SocketLayer sockets;
  if (!sockets.started()) return {ResolveStatus::kSocketLayerFailed, {}};
  if (host.empty()) return {ResolveStatus::kNotFound, {}};
  return LookUpIPv4(WideToAnsi(host));
}

ResolveResult ResolveIPv4ToHost(const std::wstring& address) {
  SocketLayer sockets;
  if (!sockets.started()) return {ResolveStatus::kSocketLayerFailed, {}};
  if (!IsDottedIPv4(address)) return {ResolveStatus::kNotFound, {}};
  IPv4Bytes bytes{};
  std::size_t part = 0;
  for (wchar_t c : address) {
    if (c == L'.') {
      ++part;
    } else {
      bytes[part] = static_cast<unsigned char>(bytes[part] * 10 + (c - L'0'));
    }
  }
  return LookUpHostName(bytes, AnsiToWide);
}

}  // namespace tavrine::platform
