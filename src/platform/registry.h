#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrine::platform {

// A tree of keys below HKEY_CURRENT_USER, addressed by relative paths such as
// L"Software\\Brennick\\TavrinE" (leading and trailing backslashes ignored).
// Key and value names compare case-insensitively, as in the registry.
// Failures never throw: reads give nullopt or an empty list, writes false.
class Registry {
 public:
  virtual ~Registry() = default;

  // REG_SZ (or REG_EXPAND_SZ, unexpanded); nullopt when the key or value is
  // missing or has another type.
  virtual std::optional<std::wstring> ReadString(const std::wstring& key_path,
                                                 const std::wstring& name) = 0;
  // Creates the key and its parents when missing.
  virtual bool WriteString(const std::wstring& key_path, const std::wstring& name,
                           const std::wstring& value) = 0;
  // REG_DWORD (for system settings such as ProxyEnable).
  virtual std::optional<std::uint32_t> ReadDword(const std::wstring& key_path,
                                                 const std::wstring& name) = 0;
  virtual bool WriteDword(const std::wstring& key_path, const std::wstring& name,
                          std::uint32_t value) = 0;
  // True when the value or key is gone afterwards, including when it never existed.
  virtual bool DeleteValue(const std::wstring& key_path, const std::wstring& name) = 0;
  virtual bool DeleteKeyTree(const std::wstring& key_path) = 0;

  virtual bool KeyExists(const std::wstring& key_path) = 0;
  // Names of the direct subkeys / of the values of a key; empty when it is missing.
  virtual std::vector<std::wstring> ListSubkeys(const std::wstring& key_path) = 0;
  virtual std::vector<std::wstring> ListValues(const std::wstring& key_path) = 0;
};

// The current user's registry. Windows opens HKEY_CURRENT_USER and ignores
// `posix_file`; POSIX keeps the same tree in that ini-style file (one section
// per key path, mode 0600, replaced atomically on every write).
std::unique_ptr<Registry> OpenCurrentUserRegistry(const std::wstring& posix_file);

// True when two key or value names are the same to the registry: without
// regard to case (ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters).
bool SameRegistryName(std::wstring_view a, std::wstring_view b);

}  // namespace tavrine::platform
