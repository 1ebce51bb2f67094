#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vault_text.h"

// The vault: a local folder that plays the backup service (layout in README.md).
namespace tavrine::refengine {

struct VersionRecord {
  int number = 0;
  SysSeconds written{};
  SysSeconds created{};
  std::uint64_t size = 0;
};

enum class Encryption { kEmpty, kDefault, kPrivate };

struct Account {
  std::filesystem::path folder;  // accounts/<encoded user>
  std::string user;
  std::string email;
  std::string password_hash;  // HashSecret form
  Encryption encryption = Encryption::kDefault;
  std::string key_hash;  // private key, HashSecret form
  std::string status = "active";  // active, not-activated, closed
  std::uint64_t quota = 0;
  std::vector<std::string> computers;
  std::string home;  // where newly registered machine codes point; empty: the first computer
  bool registration_required = false;
  std::vector<std::pair<std::string, std::string>> machine_codes;  // code, computer

  std::filesystem::path ComputerRoot(const std::string& computer) const;
  const std::string* FindComputer(const std::string& name) const;
  std::string HomeComputer() const;
};

struct VaultSettings {
  std::string server_address = "127.0.0.1";
  std::string server_port = "443";
  bool maintenance = false;
  int crash_during_upload = 0;  // test hook: the n-th uploaded file crashes half written
};

// One stored file: its remote names below the computer and its versions, oldest first.
struct StoredFile {
  std::vector<std::string> names;
  std::filesystem::path node;
  std::vector<VersionRecord> versions;
};

class Vault {
 public:
  // nullopt with `error` set when the folder is not a vault.
  static std::optional<Vault> Open(const std::filesystem::path& root, std::string* error);

  const std::filesystem::path& root() const { return root_; }
  const VaultSettings& settings() const { return settings_; }
  std::vector<Account>& accounts() { return accounts_; }

  Account* FindUser(const std::string& user);
  std::vector<const Account*> FindByEmail(const std::string& email) const;

  static bool SaveSettings(const std::filesystem::path& root, const VaultSettings& settings);
  static bool SaveAccount(const Account& account);

  // Removes a file or folder of a computer's tree: renamed into trash/ first,
  // so a crash leaves it either whole in place or gone from the tree.
  bool RemoveNode(const std::filesystem::path& node) const;

 private:
  std::filesystem::path root_;
  VaultSettings settings_;
  std::vector<Account> accounts_;
};

// A name that can be a computer's folder name in the vault and in the user folder.
bool IsSafeComputerName(const std::string& name);

// The disk path of remote names below a computer root: each name matched to a
// stored one without regard to ASCII case, else encoded as it is.
std::filesystem::path NodePath(const std::filesystem::path& computer_root,
                               const std::vector<std::string>& names);
bool IsFileNode(const std::filesystem::path& node);

std::vector<VersionRecord> ReadVersions(const std::filesystem::path& node);
std::filesystem::path VersionData(const std::filesystem::path& node, int number);

// Every stored file at or below `folder` (a computer root or a folder node),
// sorted by names; `prefix` are the names of `folder` itself.
std::vector<StoredFile> ListFiles(const std::filesystem::path& folder,
                                  const std::vector<std::string>& prefix = {});
std::uint64_t StoredBytes(const Account& account);

// Adds a version: its data is written and renamed into place first, then the
// index is replaced, so a crash at any point leaves the earlier versions readable.
// `crash_halfway` writes half the data, then ends the process.
std::optional<VersionRecord> AddVersion(const std::filesystem::path& node, std::string_view bytes,
                                        SysSeconds written, SysSeconds created,
                                        bool crash_halfway = false);

}  // namespace tavrine::refengine
