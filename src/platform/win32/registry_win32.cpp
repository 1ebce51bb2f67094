#include <windows.h>

#include "platform/registry.h"
#include "platform/win32/unique_owners.h"

namespace tavrine::platform {

namespace {

using win32::UniqueHkey;

// Leading and trailing backslashes dropped, as the POSIX store does.
std::wstring Normalize(const std::wstring& path) {
  std::size_t begin = path.find_first_not_of(L'\\');
  if (begin == std::wstring::npos) return std::wstring();
  std::size_t end = path.find_last_not_of(L'\\');
  return path.substr(begin, end - begin + 1);
}

bool OpenKey(const std::wstring& key_path, REGSAM access, UniqueHkey& key) {
  return RegOpenKeyExW(HKEY_CURRENT_USER, Normalize(key_path).c_str(), 0, access, key.put()) ==
         ERROR_SUCCESS;
}

bool CreateKey(const std::wstring& key_path, UniqueHkey& key) {
  return RegCreateKeyExW(HKEY_CURRENT_USER, Normalize(key_path).c_str(), 0, nullptr,
                         REG_OPTION_NON_VOLATILE, KEY_SET_VALUE, nullptr, key.put(),
                         nullptr) == ERROR_SUCCESS;
}

bool Gone(LSTATUS status) { return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND; }

enum class Listed { kSubkeys, kValues };

// The names of a key's subkeys or of its values; empty when the key is missing.
std::vector<std::wstring> ListNames(const std::wstring& key_path, Listed listed) {
  const bool values = listed == Listed::kValues;
  std::vector<std::wstring> names;
  UniqueHkey key;
  if (!OpenKey(key_path, KEY_READ, key)) return names;
  DWORD longest = 0;
  if (RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, nullptr, values ? nullptr : &longest,
                       nullptr, nullptr, values ? &longest : nullptr, nullptr, nullptr,
                       nullptr) != ERROR_SUCCESS) {
    return names;
  }
  std::wstring buffer(longest + 2, L'\0');
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(buffer.size());
    LSTATUS status =
        values ? RegEnumValueW(key.get(), index, buffer.data(), &length, nullptr, nullptr, nullptr,
                               nullptr)
               : RegEnumKeyExW(key.get(), index, buffer.data(), &length, nullptr, nullptr, nullptr,
                               nullptr);
    if (status == ERROR_MORE_DATA) {
      buffer.resize(buffer.size() * 2);
      --index;
      continue;
    }
    if (status != ERROR_SUCCESS) break;
    names.emplace_back(buffer.data(), length);
  }
  return names;
}

class WindowsRegistry final : public Registry {
 public:
  std::optional<std::wstring> ReadString(const std::wstring& key_path,
                                         const std::wstring& name) override {
    std::wstring path = Normalize(key_path);
    constexpr DWORD kFlags = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
    // The value may grow between the size query and the read; try again then.
    for (int attempt = 0; attempt < 4; ++attempt) {
      DWORD bytes = 0;
      LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), kFlags,
                                    nullptr, nullptr, &bytes);
      if (status != ERROR_SUCCESS) return std::nullopt;
      std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
      bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
      status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(), kFlags, nullptr,
                            text.data(), &bytes);
      if (status == ERROR_MORE_DATA) continue;
      if (status != ERROR_SUCCESS) return std::nullopt;
      text.resize(bytes / sizeof(wchar_t));
      // Only the terminators go; NULs inside the text are kept, as the POSIX store keeps them.
      while (!text.empty() && text.back() == L'\0') text.pop_back();
      return text;
    }
    return std::nullopt;
  }

  bool WriteString(const std::wstring& key_path, const std::wstring& name,
                   const std::wstring& value) override {
    UniqueHkey key;
    if (!CreateKey(key_path, key)) return false;
    auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key.get(), name.c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(value.c_str()), bytes) == ERROR_SUCCESS;
  }

  std::optional<std::uint32_t> ReadDword(const std::wstring& key_path,
                                         const std::wstring& name) override {
    DWORD data = 0;
    DWORD bytes = sizeof(data);
    if (RegGetValueW(HKEY_CURRENT_USER, Normalize(key_path).c_str(), name.c_str(),
                     RRF_RT_REG_DWORD, nullptr, &data, &bytes) != ERROR_SUCCESS) {
      return std::nullopt;
    }
    return static_cast<std::uint32_t>(data);
  }

  bool WriteDword(const std::wstring& key_path, const std::wstring& name,
                  std::uint32_t value) override {
    UniqueHkey key;
    if (!CreateKey(key_path, key)) return false;
    DWORD data = value;
    return RegSetValueExW(key.get(), name.c_str(), 0, REG_DWORD,
                          reinterpret_cast<const BYTE*>(&data), sizeof(data)) == ERROR_SUCCESS;
  }

  bool DeleteValue(const std::wstring& key_path, const std::wstring& name) override {
    UniqueHkey key;
    LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, Normalize(key_path).c_str(), 0,
                                   KEY_SET_VALUE, key.put());
    if (status == ERROR_FILE_NOT_FOUND) return true;
    if (status != ERROR_SUCCESS) return false;
    return Gone(RegDeleteValueW(key.get(), name.c_str()));
  }

  bool DeleteKeyTree(const std::wstring& key_path) override {
    std::wstring path = Normalize(key_path);
    // An empty path would empty the whole of HKEY_CURRENT_USER.
    if (path.empty()) return false;
    return Gone(RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str()));
  }

  bool KeyExists(const std::wstring& key_path) override {
    UniqueHkey key;
    return OpenKey(key_path, KEY_READ, key);
  }

  std::vector<std::wstring> ListSubkeys(const std::wstring& key_path) override {
    return ListNames(key_path, Listed::kSubkeys);
  }

  std::vector<std::wstring> ListValues(const std::wstring& key_path) override {
    return ListNames(key_path, Listed::kValues);
  }
};

}  // namespace

std::unique_ptr<Registry> OpenCurrentUserRegistry(const std::wstring&) {
  return std::make_unique<WindowsRegistry>();
}

}  // namespace tavrine::platform
