#pragma once
#include <cstdint>
#include <string>

namespace tavrine::engine {

// The seven trailing arguments of every request writer.
struct ProxyBlock {
  std::int16_t proxyexistsflag = 0;
  std::int16_t proxytype = 0;
  std::wstring proxyserverip = L"0";
  std::wstring proxyserverport = L"0";
  std::wstring proxyserveruname = L"0";
  std::wstring proxyserverpwd = L"0";
  std::wstring AsciiRandom;
};

// The Proxy_Settings record.
struct ProxySettings {
  std::int32_t Proxyenabled = 0;
  std::wstring IPText;
  std::wstring ProxyPort;
  bool httpopt_Item = false;
  bool socksopt_Item = false;
  std::wstring sUsername;
  std::wstring sPassword;
};

// No proxy: 0, 0 and "0" four times; an HTTP proxy: 1, 1 and the proxy texts;
// any other proxy: 1, 2 and the texts.
ProxyBlock ProxyArguments(const ProxySettings& settings, std::wstring random_number);

}  // namespace tavrine::engine
