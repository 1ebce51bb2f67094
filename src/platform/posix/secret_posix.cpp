#include "platform/secret_protector.h"

namespace tavrine::platform {

// The store file is mode 0600; there is no per-user key service to lean on.
std::optional<std::wstring> ProtectSecret(const std::wstring& plain) { return plain; }

std::optional<std::wstring> UnprotectSecret(const std::wstring& stored) { return stored; }

}  // namespace tavrine::platform
