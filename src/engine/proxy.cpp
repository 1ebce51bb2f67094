#include "engine/proxy.h"

namespace tavrine::engine {

ProxyBlock ProxyArguments(const ProxySettings& settings, std::wstring random_number) {
  ProxyBlock block;
  block.AsciiRandom = std::move(random_number);
  if (settings.Proxyenabled != 1) return block;
  block.proxyexistsflag = 1;
  block.proxytype = settings.httpopt_Item ? 1 : 2;
  block.proxyserverip = settings.IPText;
  block.proxyserverport = settings.ProxyPort;
  block.proxyserveruname = settings.sUsername;
  block.proxyserverpwd = settings.sPassword;
  return block;
}

}  // namespace tavrine::engine
