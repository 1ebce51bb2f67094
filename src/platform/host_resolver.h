#pragma once
#include <string>

namespace tavrine::platform {

enum class ResolveStatus { kResolved, kNotFound, kSocketLayerFailed };

struct ResolveResult {
  ResolveStatus status = ResolveStatus::kNotFound;
  std::wstring text;  // dotted IPv4 address, or the host name for reverse lookups
};

ResolveResult ResolveHostToIPv4(const std::wstring& host);
ResolveResult ResolveIPv4ToHost(const std::wstring& address);
bool IsDottedIPv4(const std::wstring& text);

}  // namespace tavrine::platform
