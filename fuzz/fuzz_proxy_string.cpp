// The system ProxyServer text ("host:port", "http=host:port;https=...").
#include <cstdint>
#include <cstdlib>

#include "dialogs/proxy_settings.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::wstring text = tavrine::fuzz::BytesAsUtf16(tavrine::fuzz::AsView(data, size));
  auto split = tavrine::dialogs::SplitProxyServer(text);
  if (split.host.size() + split.port.size() > text.size()) std::abort();
  return 0;
}
