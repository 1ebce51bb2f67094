// The sample vault of the tests and the demo (contents listed in README.md).
#include <chrono>
#include <system_error>

#include "vault.h"
#include "vault_service.h"

namespace tavrine::refengine {

namespace {

namespace fs = std::filesystem;

struct SampleFile {
  const char* computer;
  std::vector<std::string> names;
  int versions;
};

struct SampleAccount {
  const char* user;
  const char* email;
  const char* password;
  Encryption encryption;
  const char* key;
  std::uint64_t quota;
  std::vector<std::string> computers;
  std::vector<SampleFile> files;
};

// Version n of a file: a readable line repeated n times, so sizes differ.
std::string SampleBytes(const std::vector<std::string>& names, int version) {
  std::string path;
  for (const std::string& name : names) path += "\\" + name;
  if (names.back().ends_with(".bin")) {
    std::string bytes;
    for (int i = 0; i < 256 * version; ++i) bytes += static_cast<char>(i & 0xFF);
    return bytes;
  }
  std::string bytes;
  for (int i = 1; i <= version; ++i) bytes += path.substr(1) + " version " + std::to_string(version) + " line " + std::to_string(i) + "\r\n";
  return bytes;
}

std::vector<SampleAccount> SampleAccounts() {
  return {
      {"anna", "anna@example.com", "anna-pass", Encryption::kPrivate, "anna-key-2024", 2147483648ull,
       {"HOMEPC", "WORKPC"},
       {{"HOMEPC", {"C:", "Documents", "Reports", "2023", "Q1 report.txt"}, 3},
        {"HOMEPC", {"C:", "Documents", "Notizen f\xC3\xBCr M\xC3\xA4rz.txt"}, 2},
        {"HOMEPC", {"C:", "Documents", "\xD0\xA4\xD0\xBE\xD1\x82\xD0\xBE", "\xD0\xBB\xD0\xB5\xD1\x82\xD0\xBE.txt"}, 1},
        {"HOMEPC", {"D:", "Music", "Caf\xC3\xA9 del Mar.txt"}, 1},
        {"WORKPC", {"C:", "Projects", "plan.txt"}, 4},
        {"WORKPC", {"C:", "Projects", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "\xE3\x83\xA1\xE3\x83\xA2.txt"}, 2}}},
      {"ben", "ben@example.com", "ben-pass", Encryption::kDefault, "", 12884901888ull,
       {"BENLAPTOP"},
       {{"BENLAPTOP", {"C:", "Users", "ben", "notes.txt"}, 2},
        {"BENLAPTOP", {"C:", "Users", "ben", "Pictures", "cat.bin"}, 1}}},
      {"dora", "ben@example.com", "dora-pass", Encryption::kEmpty, "", 2147483648ull, {"DORAPC"}, {}},
  };
}

}  // namespace

int MakeSampleVault(const fs::path& root) {
  std::error_code ec;
  if (fs::exists(root, ec) && !fs::is_empty(root, ec)) return 2;
  if (!Vault::SaveSettings(root, VaultSettings{})) return 4;
  // 01-15-2023 09:30:00 UTC, then one day per version and per file.
  const SysSeconds base = ParseDate("01-15-2023 09:30:00").value_or(SysSeconds{});
  const auto day = std::chrono::hours(24);
  for (const SampleAccount& sample : SampleAccounts()) {
    Account account;
    account.folder = root / "accounts" / EncodeName(sample.user);
    account.user = sample.user;
    account.email = sample.email;
    account.password_hash = HashSecret(sample.password);
    account.encryption = sample.encryption;
    if (sample.encryption == Encryption::kPrivate) account.key_hash = HashSecret(sample.key);
    account.quota = sample.quota;
    account.computers = sample.computers;
    if (!Vault::SaveAccount(account)) return 4;
    int file_index = 0;
    for (const SampleFile& file : sample.files) {
      const fs::path node = NodePath(account.ComputerRoot(file.computer), file.names);
      for (int version = 1; version <= file.versions; ++version) {
        const SysSeconds written = base + day * (file_index * 10 + version);
        if (!AddVersion(node, SampleBytes(file.names, version), written, written + std::chrono::hours(1)))
          return 4;
      }
      ++file_index;
    }
  }
  return 0;
}

}  // namespace tavrine::refengine
