#include "vault.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

#include "engine_os.h"

namespace tavrine::refengine {

namespace {

namespace fs = std::filesystem;

constexpr char kSettingsFile[] = "vault.txt";
constexpr char kAccountFile[] = "account.txt";
constexpr char kIndexFile[] = "=versions.txt";

// "key = value" lines; '#' starts a comment line.
std::vector<std::pair<std::string, std::string>> ParseKeyValues(std::string_view text) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const std::string& raw : SplitLines(DecodeAnyText(text))) {
    std::string line = Trim(raw);
    if (line.empty() || line[0] == '#') continue;
    std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    pairs.emplace_back(AsciiLower(Trim(line.substr(0, equals))), Trim(line.substr(equals + 1)));
  }
  return pairs;
}

std::optional<std::uint64_t> ParseNumber(std::string_view text) {
  std::uint64_t value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

const char* EncryptionName(Encryption encryption) {
  switch (encryption) {
    case Encryption::kEmpty:
      return "empty";
    case Encryption::kPrivate:
      return "private";
    case Encryption::kDefault:
      break;
  }
  return "default";
}

std::optional<Account> LoadAccount(const fs::path& folder, std::string* error) {
  std::optional<std::string> text = ReadWholeFile(folder / kAccountFile);
  if (!text) return std::nullopt;
  Account account;
  account.folder = folder;
  for (const auto& [key, value] : ParseKeyValues(*text)) {
    if (key == "user") account.user = value;
    else if (key == "email") account.email = value;
    else if (key == "password") account.password_hash = value;
    else if (key == "key") account.key_hash = value;
    else if (key == "status") account.status = value;
    else if (key == "home") account.home = value;
    else if (key == "registration") account.registration_required = value == "required";
    else if (key == "quota") account.quota = ParseNumber(value).value_or(0);
    else if (key == "encryption")
      account.encryption = value == "empty"     ? Encryption::kEmpty
                           : value == "private" ? Encryption::kPrivate
                                                : Encryption::kDefault;
    else if (key == "computer") {
      if (!IsSafeComputerName(value)) {
        *error = "computer name not usable as a folder name: " + value;
        return std::nullopt;
      }
      account.computers.push_back(value);
    } else if (key == "machine-code") {
      std::size_t blank = value.find(' ');
      if (blank != std::string::npos)
        account.machine_codes.emplace_back(value.substr(0, blank), Trim(value.substr(blank + 1)));
    }
  }
  if (account.user.empty()) {
    *error = "account without user: " + folder.filename().string();
    return std::nullopt;
  }
  return account;
}

bool ParseVersionLine(std::string_view line, VersionRecord* record) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  for (;;) {
    std::size_t slash = line.find('/', start);
    fields.push_back(line.substr(start, slash == std::string_view::npos ? slash : slash - start));
    if (slash == std::string_view::npos) break;
    start = slash + 1;
  }
  if (fields.size() != 4) return false;
  std::optional<std::uint64_t> number = ParseNumber(fields[0]), size = ParseNumber(fields[3]);
  std::optional<SysSeconds> written = ParseDate(fields[1]), created = ParseDate(fields[2]);
  if (!number || !size || !written || !created || *number == 0 || *number > 1000000) return false;
  *record = {static_cast<int>(*number), *written, *created, *size};
  return true;
}

std::string VersionLine(const VersionRecord& record) {
  return std::to_string(record.number) + "/" + FormatDate(record.written) + "/" +
         FormatDate(record.created) + "/" + std::to_string(record.size);
}

bool NamesLess(const StoredFile& a, const StoredFile& b) {
  return std::lexicographical_compare(
      a.names.begin(), a.names.end(), b.names.begin(), b.names.end(),
      [](const std::string& x, const std::string& y) {
        std::string lx = AsciiLower(x), ly = AsciiLower(y);
        return lx != ly ? lx < ly : x < y;
      });
}

}  // namespace

fs::path Account::ComputerRoot(const std::string& computer) const {
  return folder / "computers" / EncodeName(computer);
}

const std::string* Account::FindComputer(const std::string& name) const {
  for (const std::string& computer : computers)
    if (SameText(computer, name)) return &computer;
  return nullptr;
}

std::string Account::HomeComputer() const {
  if (const std::string* home_computer = FindComputer(home)) return *home_computer;
  return computers.empty() ? std::string() : computers.front();
}

std::optional<Vault> Vault::Open(const fs::path& root, std::string* error) {
  std::error_code ec;
  if (!fs::is_directory(root, ec)) {
    *error = "vault folder missing: " + Utf8FromPath(root);
    return std::nullopt;
  }
  Vault vault;
  vault.root_ = root;
  for (const auto& [key, value] : ParseKeyValues(ReadWholeFile(root / kSettingsFile).value_or(""))) {
    if (key == "server-address") vault.settings_.server_address = value;
    else if (key == "server-port") vault.settings_.server_port = value;
    else if (key == "maintenance") vault.settings_.maintenance = value == "yes";
    else if (key == "crash-during-upload")
      vault.settings_.crash_during_upload = static_cast<int>(ParseNumber(value).value_or(0));
  }
  for (fs::directory_iterator it(root / "accounts", ec), end; !ec && it != end; it.increment(ec)) {
    if (!it->is_directory(ec)) continue;
    std::optional<Account> account = LoadAccount(it->path(), error);
    if (!error->empty()) return std::nullopt;
    if (account) vault.accounts_.push_back(std::move(*account));
  }
  return vault;
}

Account* Vault::FindUser(const std::string& user) {
  for (Account& account : accounts_)
    if (!user.empty() && SameText(account.user, user)) return &account;
  return nullptr;
}

std::vector<const Account*> Vault::FindByEmail(const std::string& email) const {
  std::vector<const Account*> found;
  for (const Account& account : accounts_)
    if (!email.empty() && SameText(account.email, email)) found.push_back(&account);
  return found;
}

bool Vault::SaveSettings(const fs::path& root, const VaultSettings& settings) {
  std::string text = "# The service this vault plays.\n";
  text += "server-address = " + settings.server_address + "\n";
  text += "server-port = " + settings.server_port + "\n";
  text += std::string("maintenance = ") + (settings.maintenance ? "yes" : "no") + "\n";
  if (settings.crash_during_upload > 0)
    text += "crash-during-upload = " + std::to_string(settings.crash_during_upload) + "\n";
  std::error_code ec;
  fs::create_directories(root / "accounts", ec);
  return WriteFileAtomically(root / kSettingsFile, text);
}

bool Vault::SaveAccount(const Account& account) {
  std::string text;
  text += "user = " + account.user + "\n";
  text += "email = " + account.email + "\n";
  text += "password = " + account.password_hash + "\n";
  text += std::string("encryption = ") + EncryptionName(account.encryption) + "\n";
  if (account.encryption == Encryption::kPrivate) text += "key = " + account.key_hash + "\n";
  text += "status = " + account.status + "\n";
  text += "quota = " + std::to_string(account.quota) + "\n";
  for (const std::string& computer : account.computers) text += "computer = " + computer + "\n";
  if (!account.home.empty()) text += "home = " + account.home + "\n";
  text += std::string("registration = ") + (account.registration_required ? "required" : "optional") + "\n";
  for (const auto& [code, computer] : account.machine_codes)
    text += "machine-code = " + code + " " + computer + "\n";
  std::error_code ec;
  fs::create_directories(account.folder, ec);
  return WriteFileAtomically(account.folder / kAccountFile, text);
}

bool Vault::RemoveNode(const fs::path& node) const {
  std::error_code ec;
  fs::create_directories(root_ / "trash", ec);
  const fs::path trash = TempSibling(root_ / "trash" / "removed");
  if (!RenameReplacing(node, trash)) return false;
  fs::remove_all(trash, ec);
  return true;
}

bool IsSafeComputerName(const std::string& name) {
  if (name.empty() || name == "." || name == "..") return false;
  for (char c : name)
    if (static_cast<unsigned char>(c) < 0x20 || std::string_view("<>:\"/\\|?*%;").find(c) != std::string_view::npos)
      return false;
  return name.back() != '.' && name.back() != ' ';
}

fs::path NodePath(const fs::path& computer_root, const std::vector<std::string>& names) {
  fs::path path = computer_root;
  for (const std::string& name : names) {
    fs::path exact = path / PathFromUtf8(EncodeName(name));
    std::error_code ec;
    if (!fs::exists(exact, ec)) {
      // Remote names match without regard to case, as on the service.
      for (fs::directory_iterator it(path, ec), end; !ec && it != end; it.increment(ec)) {
        std::optional<std::string> stored = DecodeName(Utf8FromPath(it->path().filename()));
        if (stored && SameText(*stored, name)) {
          exact = it->path();
          break;
        }
      }
    }
    path = exact;
  }
  return path;
}

bool IsFileNode(const fs::path& node) {
  std::error_code ec;
  return fs::is_regular_file(node / kIndexFile, ec);
}

std::vector<VersionRecord> ReadVersions(const fs::path& node) {
  std::vector<VersionRecord> versions;
  for (const std::string& line : SplitLines(ReadWholeFile(node / kIndexFile).value_or(""))) {
    VersionRecord record;
    std::error_code ec;
    // A line without its data file does not count: the data goes in first.
    if (ParseVersionLine(line, &record) && fs::is_regular_file(VersionData(node, record.number), ec))
      versions.push_back(record);
  }
  std::sort(versions.begin(), versions.end(),
            [](const VersionRecord& a, const VersionRecord& b) { return a.number < b.number; });
  return versions;
}

fs::path VersionData(const fs::path& node, int number) { return node / ("=" + std::to_string(number)); }

std::vector<StoredFile> ListFiles(const fs::path& folder, const std::vector<std::string>& prefix) {
  std::vector<StoredFile> files;
  std::error_code ec;
  if (IsFileNode(folder)) {
    std::vector<VersionRecord> versions = ReadVersions(folder);
    if (!versions.empty()) files.push_back({prefix, folder, std::move(versions)});
    return files;
  }
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    if (!it->is_directory(ec)) continue;
    std::string encoded = Utf8FromPath(it->path().filename());
    std::optional<std::string> name = DecodeName(encoded);
    // Temp files and folders of interrupted writes are not part of the tree.
    if (!name || encoded.find(".tmp-") != std::string::npos || encoded[0] == '=') continue;
    std::vector<std::string> names = prefix;
    names.push_back(*name);
    std::vector<StoredFile> below = ListFiles(it->path(), names);
    files.insert(files.end(), std::make_move_iterator(below.begin()),
                 std::make_move_iterator(below.end()));
  }
  std::sort(files.begin(), files.end(), NamesLess);
  return files;
}

std::uint64_t StoredBytes(const Account& account) {
  std::uint64_t total = 0;
  for (const std::string& computer : account.computers)
    for (const StoredFile& file : ListFiles(account.ComputerRoot(computer)))
      for (const VersionRecord& version : file.versions) total += version.size;
  return total;
}

std::optional<VersionRecord> AddVersion(const fs::path& node, std::string_view bytes,
                                        SysSeconds written, SysSeconds created, bool crash_halfway) {
  std::error_code ec;
  fs::create_directories(node, ec);
  std::vector<VersionRecord> versions = ReadVersions(node);
  VersionRecord record{versions.empty() ? 1 : versions.back().number + 1, written, created,
                       static_cast<std::uint64_t>(bytes.size())};
  const fs::path data = VersionData(node, record.number);
  const fs::path temp = TempSibling(data);
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    std::size_t count = crash_halfway ? bytes.size() / 2 : bytes.size();
    out.write(bytes.data(), static_cast<std::streamsize>(count));
    out.flush();
    if (crash_halfway) ExitAbnormally();
    if (!out) return std::nullopt;
  }
  if (!RenameReplacing(temp, data)) {
    fs::remove(temp, ec);
    return std::nullopt;
  }
  std::string index;
  for (const VersionRecord& old : versions) index += VersionLine(old) + "\r\n";
  index += VersionLine(record) + "\r\n";
  if (!WriteFileAtomically(node / kIndexFile, index)) return std::nullopt;
  return record;
}

}  // namespace tavrine::refengine
