#include "engine/ip_resolve.h"

#include "foundation/settings.h"
#include "platform/host_resolver.h"
#include "platform/services.h"

namespace tavrine::engine {

std::wstring clsIPResolve::GetIPFromHostName(const std::wstring& host) {
  platform::ResolveResult result = platform::ResolveHostToIPv4(host);
  if (result.status == platform::ResolveStatus::kSocketLayerFailed) {
    platform::CurrentUi().ShowMessageBox(L"Failed to open Socket.",
                                         foundation::CurrentSettings().message_title,
                                         platform::kMbOk);
    return L"";
  }
  return result.status == platform::ResolveStatus::kResolved ? result.text : L"";
}

std::wstring clsIPResolve::GetHostNameFromIP(const std::wstring& address) {
  if (!IsValidIPAddress(address)) {
    platform::CurrentUi().ShowMessageBox(L"Invalid IP address",
                                         foundation::CurrentSettings().message_title,
                                         platform::kMbOk);
    return L"";
  }
  platform::ResolveResult result = platform::ResolveIPv4ToHost(address);
  if (result.status == platform::ResolveStatus::kSocketLayerFailed) {
    platform::CurrentUi().ShowMessageBox(L"Failed to open Socket",
                                         foundation::CurrentSettings().message_title,
                                         platform::kMbOk);
    return L"";
  }
  if (result.status != platform::ResolveStatus::kResolved) {
    platform::CurrentUi().ShowMessageBox(L"Call to gethostbyaddr failed.",
                                         foundation::CurrentSettings().message_title,
                                         platform::kMbOk);
    return L"";
  }
  return result.text;
}

bool clsIPResolve::IsValidIPAddress(const std::wstring& address) {
  return platform::IsDottedIPv4(address);
}

}  // namespace tavrine::engine
