#include "engine/ip_resolve.h"

#include "foundation/configuration.h"
#include "platform/host_resolver.h"
#include "platform/services.h"

namespace tavrine::engine {

std::wstring ResolveHostAddress(const std::wstring& host) {
  platform::ResolveResult result = platform::ResolveHostToIPv4(host);
  if (result.status == platform::ResolveStatus::kSocketLayerFailed) {
    platform::CurrentUi().ShowMessageBox(L"Failed to open Socket.",
                                         foundation::LoadedConfiguration().message_title,
                                         platform::kMbOk);
    return L"";
  }
  return result.status == platform::ResolveStatus::kResolved ? result.text : L"";
}

}  // namespace tavrine::engine
