#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string_view>
#include <system_error>

#include "platform/path.h"
#include "platform/registry.h"
#include "platform/unique_owner.h"

namespace tavrine::platform {

namespace {

// The file format: one "[key path]" line per key, then "name=data" lines.
// Names and data are UTF-8 with the characters that would break a line or
// the format written as %XX; DWORD data is "#dword:<decimal>" (a string
// never starts with a raw '#', it is escaped).
constexpr std::wstring_view kDwordPrefix = L"#dword:";

struct Value {
  std::wstring name;
  std::wstring data;  // the string, or the DWORD's decimal digits
  bool dword = false;
};

struct Key {
  std::wstring path;
  std::vector<Value> values;
};

using Tree = std::vector<Key>;

// Leading and trailing backslashes dropped; nullopt for an empty segment.
std::optional<std::wstring> NormalizeKeyPath(const std::wstring& path) {
  std::size_t begin = path.find_first_not_of(L'\\');
  if (begin == std::wstring::npos) return std::wstring();
  std::size_t end = path.find_last_not_of(L'\\');
  std::wstring trimmed = path.substr(begin, end - begin + 1);
  if (trimmed.find(L"\\\\") != std::wstring::npos) return std::nullopt;
  return trimmed;
}

// The part of `key` below `ancestor` (without the separator), or nullopt when
// `key` is not strictly below it.
std::optional<std::wstring> RelativeBelow(const std::wstring& key, const std::wstring& ancestor) {
  if (ancestor.empty()) {
    if (key.empty()) return std::nullopt;
    return key;
  }
  if (key.size() <= ancestor.size() + 1 || key[ancestor.size()] != L'\\') return std::nullopt;
  if (!SameRegistryName(std::wstring_view(key).substr(0, ancestor.size()), ancestor)) {
    return std::nullopt;
  }
  return key.substr(ancestor.size() + 1);
}

bool NeedsEscape(wchar_t c) {
  return c < 0x20 || c == 0x7F || c == L'%' || c == L'=' || c == L'[' || c == L']' ||
         c == L'#' || c == L';';
}

std::wstring Escape(std::wstring_view text) {
  static constexpr wchar_t kHex[] = L"0123456789ABCDEF";
  std::wstring out;
  out.reserve(text.size());
  for (wchar_t c : text) {
    if (NeedsEscape(c)) {
      auto v = static_cast<unsigned>(c);
      out += L'%';
      out += kHex[(v >> 4) & 0xF];
      out += kHex[v & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

int HexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  return -1;
}

std::wstring Unescape(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 &&
        HexDigit(text[i + 2]) >= 0) {
      out += static_cast<wchar_t>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

Key* FindKey(Tree& tree, const std::wstring& path) {
  for (Key& key : tree) {
    if (SameRegistryName(key.path, path)) return &key;
  }
  return nullptr;
}

Value* FindValue(Key& key, const std::wstring& name) {
  for (Value& value : key.values) {
    if (SameRegistryName(value.name, name)) return &value;
  }
  return nullptr;
}

// Lenient: anything that is not a section or a "name=data" line is skipped,
// so a damaged file reads as whatever can still be recognised.
Tree Parse(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  Tree tree;
  Key* current = nullptr;
  std::size_t start = 0;
  while (start < bytes.size()) {
    std::size_t end = bytes.find('\n', start);
    if (end == std::string_view::npos) end = bytes.size();
    std::string_view line = bytes.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty()) continue;
    std::wstring text = Utf8ToWide(line);
    if (text.front() == L'[' && text.back() == L']' && text.size() >= 2) {
      std::optional<std::wstring> path =
          NormalizeKeyPath(Unescape(std::wstring_view(text).substr(1, text.size() - 2)));
      current = nullptr;
      if (!path) continue;
      current = FindKey(tree, *path);
      if (!current) current = &tree.emplace_back(Key{*path, {}});
      continue;
    }
    std::size_t equals = text.find(L'=');
    if (!current || equals == std::wstring::npos) continue;
    std::wstring name = Unescape(std::wstring_view(text).substr(0, equals));
    if (FindValue(*current, name)) continue;  // first one wins
    std::wstring_view raw = std::wstring_view(text).substr(equals + 1);
    bool dword = raw.substr(0, kDwordPrefix.size()) == kDwordPrefix;
    std::wstring data = dword ? std::wstring(raw.substr(kDwordPrefix.size())) : Unescape(raw);
    current->values.push_back(Value{std::move(name), std::move(data), dword});
  }
  return tree;
}

std::string Serialize(const Tree& tree) {
  std::wstring text;
  for (const Key& key : tree) {
    text += L'[' + Escape(key.path) + L"]\n";
    for (const Value& value : key.values) {
      text += Escape(value.name) + L'=' +
              (value.dword ? std::wstring(kDwordPrefix) + value.data : Escape(value.data)) + L'\n';
    }
  }
  return WideToUtf8(text);
}

// A file descriptor; -1 is "none".
struct FileDescriptor {
  using Value = int;
  static constexpr int Empty() noexcept { return -1; }
  static void Close(int fd) noexcept { ::close(fd); }
};
using UniqueFd = UniqueOwner<FileDescriptor>;

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// Every read-modify-write of a store file in this process runs under this lock.
std::mutex& StoreMutex() {
  static std::mutex mutex;
  return mutex;
}

class FileRegistry final : public Registry {
 public:
  explicit FileRegistry(const std::wstring& file) : file_(ToFsPath(file)), usable_(!file.empty()) {}

  std::optional<std::wstring> ReadString(const std::wstring& key_path,
                                         const std::wstring& name) override {
    std::optional<Value> value = Find(key_path, name);
    if (!value || value->dword) return std::nullopt;
    return value->data;
  }

  bool WriteString(const std::wstring& key_path, const std::wstring& name,
                   const std::wstring& value) override {
    return Set(key_path, name, value, false);
  }

  std::optional<std::uint32_t> ReadDword(const std::wstring& key_path,
                                         const std::wstring& name) override {
    std::optional<Value> value = Find(key_path, name);
    if (!value || !value->dword) return std::nullopt;
    try {
      std::size_t used = 0;
      unsigned long number = std::stoul(value->data, &used);
      if (used != value->data.size() || number > 0xFFFFFFFFul) return std::nullopt;
      return static_cast<std::uint32_t>(number);
    } catch (...) {
      return std::nullopt;
    }
  }

  bool WriteDword(const std::wstring& key_path, const std::wstring& name,
                  std::uint32_t value) override {
    return Set(key_path, name, std::to_wstring(value), true);
  }

  bool DeleteValue(const std::wstring& key_path, const std::wstring& name) override {
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return false;
    return Modify([&](Tree& tree) {
      Key* key = FindKey(tree, *path);
      if (!key) return false;
      std::erase_if(key->values, [&](const Value& v) { return SameRegistryName(v.name, name); });
      return true;
    });
  }

  bool DeleteKeyTree(const std::wstring& key_path) override {
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    // Never the whole tree, as on Windows.
    if (!path || path->empty()) return false;
    return Modify([&](Tree& tree) {
      std::size_t before = tree.size();
      std::erase_if(tree, [&](const Key& key) {
        return SameRegistryName(key.path, *path) || RelativeBelow(key.path, *path).has_value();
      });
      return tree.size() != before;
    });
  }

  bool KeyExists(const std::wstring& key_path) override {
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return false;
    for (const Key& key : Load()) {
      if (SameRegistryName(key.path, *path) || RelativeBelow(key.path, *path)) return true;
    }
    return false;
  }

  std::vector<std::wstring> ListSubkeys(const std::wstring& key_path) override {
    std::vector<std::wstring> names;
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return names;
    for (const Key& key : Load()) {
      std::optional<std::wstring> below = RelativeBelow(key.path, *path);
      if (!below) continue;
      std::wstring child = below->substr(0, below->find(L'\\'));
      bool known = false;
      for (const std::wstring& name : names) known = known || SameRegistryName(name, child);
      if (!known) names.push_back(child);
    }
    return names;
  }

  std::vector<std::wstring> ListValues(const std::wstring& key_path) override {
    std::vector<std::wstring> names;
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return names;
    Tree tree = Load();
    if (Key* key = FindKey(tree, *path)) {
      for (const Value& value : key->values) names.push_back(value.name);
    }
    return names;
  }

 private:
  Tree Load() {
    if (!usable_) return {};
    std::lock_guard lock(StoreMutex());
    return LoadUnlocked();
  }

  Tree LoadUnlocked() const {
    std::ifstream in(file_, std::ios::binary);
    if (!in) return {};
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return Parse(bytes);
  }

  std::optional<Value> Find(const std::wstring& key_path, const std::wstring& name) {
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return std::nullopt;
    Tree tree = Load();
    Key* key = FindKey(tree, *path);
    if (!key) return std::nullopt;
    Value* value = FindValue(*key, name);
    if (!value) return std::nullopt;
    return *value;
  }

  bool Set(const std::wstring& key_path, const std::wstring& name, const std::wstring& data,
           bool dword) {
    std::optional<std::wstring> path = NormalizeKeyPath(key_path);
    if (!path) return false;
    return Modify([&](Tree& tree) {
      Key* key = FindKey(tree, *path);
      if (!key) key = &tree.emplace_back(Key{*path, {}});
      if (Value* value = FindValue(*key, name)) {
        value->data = data;
        value->dword = dword;
      } else {
        key->values.push_back(Value{name, data, dword});
      }
      return true;
    });
  }

  // `change` returns false when there is nothing to write; the result is then
  // still success (the wanted state holds).
  template <class Change>
  bool Modify(Change change) {
    if (!usable_) return false;
    std::lock_guard lock(StoreMutex());
    Tree tree = LoadUnlocked();
    if (!change(tree)) return true;
    return Save(Serialize(tree));
  }

  // Temp file beside the target, then rename: a reader sees the old or the
  // new tree, never half of one. Created 0600 so no other user can read it.
  bool Save(const std::string& bytes) const {
    static std::atomic<unsigned> counter{0};
    std::error_code error;
    if (file_.has_parent_path()) std::filesystem::create_directories(file_.parent_path(), error);
    std::filesystem::path temp = file_;
    temp += ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    UniqueFd fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (fd.get() < 0) return false;
    bool ok = WriteAll(fd.get(), bytes) && ::fsync(fd.get()) == 0;
    ok = ::close(fd.release()) == 0 && ok;  // a failed close may lose written data
    ok = ok && ::rename(temp.c_str(), file_.c_str()) == 0;
    if (!ok) ::unlink(temp.c_str());
    return ok;
  }

  std::filesystem::path file_;
  bool usable_;
};

}  // namespace

std::unique_ptr<Registry> OpenCurrentUserRegistry(const std::wstring& posix_file) {
  return std::make_unique<FileRegistry>(posix_file);
}

}  // namespace tavrine::platform
