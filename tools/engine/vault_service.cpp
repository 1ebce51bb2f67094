// Vault mode: each command code answered from the vault as the service would.
#include "vault_service.h"

#include <chrono>
#include <system_error>

#include "engine_os.h"
#include "vault.h"

namespace tavrine::refengine {

namespace {

namespace fs = std::filesystem;

// Result codes of the service.
constexpr long long kSuccess = 402;
constexpr long long kRegistered = 404;
constexpr long long kEncryptionEmpty = 900, kEncryptionDefault = 901, kEncryptionPrivate = 902;
constexpr long long kUnknownUser = -401, kWrongPassword = -403, kPasswordChanged = -400;
constexpr long long kWrongKey = -404, kNoSpace = -406, kNothingToRestore = -408;
constexpr long long kDatabaseError = -415, kNotOnServer = -423;
constexpr long long kMachineNotRegistered = -505, kNotActivated = -506, kClosed = -507;
constexpr long long kUserVariable = -508, kRegistrationFailed = -510, kMaintenance = -511;
constexpr long long kNoAccountForEmail = -512, kDestinationProtected = -1001;

enum Code : long long {
  kRegister = 5, kDelete = 6, kEncryptionStatus = 110, kCompleteSession = 111, kVersions = 113,
  kQuota = 114, kListing = 115, kLogin = 116, kResolveEmail = 117, kMachineList = 119,
  kBrowseInit = 122, kRestore = 123,
};

struct Request {
  std::vector<std::string> lines;
  std::string Line(std::size_t number) const {
    return number >= 1 && number <= lines.size() ? lines[number - 1] : std::string();
  }
  std::string User() const { return Unshift(Line(3)); }
  std::string Password() const { return Unshift(Line(4)); }
  std::string EncryptionPassword() const { return Unshift(Line(5)); }
  std::string Random() const { return Line(6); }
};

// Result files go down whole (temp + rename): the library may poll for them.
class Answer {
 public:
  explicit Answer(fs::path folder) : folder_(std::move(folder)) {}
  int Output(long long code) { return Write("DLLOutput.txt", std::to_string(code) + "\r\n"); }
  int Info(long long code, const std::string& text) {
    Write("DLLOutputInfo.txt", std::to_string(code) + "\r\n" + text + "\r\n");
    return 0;
  }
  int Write(const std::string& name, const std::string& bytes) {
    WriteFileAtomically(folder_ / name, bytes);
    return 0;
  }
  const fs::path& folder() const { return folder_; }

 private:
  fs::path folder_;
};

std::string IniValue(const fs::path& file, std::string_view section, std::string_view key) {
  bool in_section = false;
  for (const std::string& raw : SplitLines(DecodeAnyText(ReadWholeFile(file).value_or("")))) {
    std::string line = Trim(raw);
    if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
      in_section = SameText(Trim(line.substr(1, line.size() - 2)), section);
      continue;
    }
    std::size_t equals = line.find('=');
    if (!in_section || equals == std::string::npos || !SameText(Trim(line.substr(0, equals)), key))
      continue;
    std::string value = Trim(line.substr(equals + 1));
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    return value;
  }
  return {};
}

// The first computer named in the exchange folder's MPC.ini ("Hosts=NAME|...;").
std::string MpcHost(const fs::path& folder) {
  std::string hosts = IniValue(folder / "MPC.ini", "MPC", "Hosts");
  return hosts.substr(0, hosts.find_first_of("|;"));
}

struct Target {
  std::string computer;
  std::vector<std::string> names;
};

// Whose tree a remote path names: a leading computer name when the account
// has several, else the computer MPC.ini names, else the request's computer.
Target ResolveTarget(const Account& account, std::vector<std::string> names,
                     const std::string& mpc_host, const std::string& request_computer) {
  if (account.computers.size() > 1 && !names.empty()) {
    if (const std::string* computer = account.FindComputer(names.front())) {
      names.erase(names.begin());
      return {*computer, std::move(names)};
    }
  }
  if (const std::string* computer = account.FindComputer(mpc_host)) return {*computer, std::move(names)};
  return {request_computer, std::move(names)};
}

std::string JoinRemote(const std::vector<std::string>& names) {
  std::string path;
  for (std::size_t i = 0; i < names.size(); ++i) path += (i ? "\\" : "") + names[i];
  return path;
}

std::string ListingBytes(const std::vector<StoredFile>& files) {
  std::string text;
  for (const StoredFile& file : files) {
    const VersionRecord& latest = file.versions.back();
    text += JoinRemote(file.names) + "/" + std::to_string(file.versions.size()) + "/" +
            std::to_string(latest.size) + "/" + FormatDate(latest.written) + "/A\r\n";
  }
  return Utf16LeFromUtf8(text);
}

SysSeconds Now() { return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()); }

class Service {
 public:
  Service(Vault vault, fs::path home, fs::path folder)
      : vault_(std::move(vault)), home_(std::move(home)), answer_(std::move(folder)) {}

  int Run(long long code) {
    std::optional<std::string> bytes = ReadWholeFile(answer_.folder() / "DLLInput.txt");
    if (!bytes) return answer_.Info(kUserVariable, "No request");
    request_.lines = SplitLines(DecodeAnyText(*bytes));
    if (vault_.settings().maintenance) return answer_.Info(kMaintenance, "Cleanup is in progress");
    if (code == kResolveEmail) return ResolveEmail();
    if (code == kLogin && answer_.folder().parent_path().filename() == "iTemp") MarkFirewallProbe();
    account_ = vault_.FindUser(request_.User());
    if (!account_) return answer_.Info(kUnknownUser, "Invalid username");
    if (account_->status == "not-activated") return answer_.Info(kNotActivated, "Account not activated");
    if (account_->status == "closed") return answer_.Info(kClosed, "Account cancelled");
    if (!SecretMatches(account_->password_hash, request_.Password())) {
      if (code == kMachineList) return answer_.Info(kPasswordChanged, "Password changed");
      return answer_.Info(kWrongPassword, "Wrong password");
    }
    switch (code) {
      case kRegister: return Register();
      case kDelete: return Delete();
      case kEncryptionStatus: return EncryptionStatusOrUpload();
      case kCompleteSession: return CompleteSession();
      case kVersions: return Versions();
      case kQuota: return Quota();
      case kListing: return Listing();
      case kLogin: return Login();
      case kMachineList: return MachineList();
      case kBrowseInit: return BrowseInit();
      case kRestore: return Restore();
      default: return answer_.Info(kUserVariable, "Command not served by the vault");
    }
  }

 private:
  // The computer this client is: a registered machine code, else the account's home.
  std::optional<std::string> RequestComputer(bool need_registration) {
    for (const auto& [code, computer] : account_->machine_codes)
      if (code == request_.Random() && account_->FindComputer(computer)) return *account_->FindComputer(computer);
    if (need_registration && account_->registration_required) return std::nullopt;
    return account_->HomeComputer();
  }

  bool KeyAccepted() const {
    return account_->encryption != Encryption::kPrivate ||
           SecretMatches(account_->key_hash, request_.EncryptionPassword());
  }

  bool Save() { return Vault::SaveAccount(*account_); }

  int ResolveEmail() {
    std::string names;
    for (const Account* account : vault_.FindByEmail(request_.User()))
      names += (names.empty() ? "" : "|") + account->user;
    if (names.empty()) return answer_.Info(kNoAccountForEmail, "No account for this e-mail address");
    // The library takes the names from the address's profile.
    if (!WriteRequestProfile({{"InteractiveLists", names}}))
      return answer_.Info(kDatabaseError, "Profile could not be written");
    answer_.Write("DLLOutput1.txt", names + "\r\n");
    return answer_.Output(kSuccess);
  }

  // The firewall probe looks for "<installation>Client.txt" in the base folder.
  void MarkFirewallProbe() {
    const std::string installation = Installation();
    if (installation.empty()) return;
    WriteFileAtomically(answer_.folder().parent_path().parent_path() /
                            PathFromUtf8(installation + "Client.txt"),
                        "1\r\n");
  }

  int Login() {
    answer_.Write("DLLOutput1.txt",
                  vault_.settings().server_address + "\r\n" + vault_.settings().server_port + "\r\n");
    return answer_.Output(kSuccess);
  }

  int EncryptionStatusOrUpload() {
    std::error_code ec;
    if (fs::is_regular_file(answer_.folder() / "ToBackup.txt", ec)) return Upload();
    switch (account_->encryption) {
      case Encryption::kEmpty: return answer_.Output(kEncryptionEmpty);
      case Encryption::kPrivate: return answer_.Output(kEncryptionPrivate);
      case Encryption::kDefault: break;
    }
    return answer_.Output(kEncryptionDefault);
  }

  // First use of an account without a key sets it: "DEF" the default, else a private key.
  int CompleteSession() {
    const std::string key = request_.EncryptionPassword();
    if (account_->encryption == Encryption::kEmpty && !key.empty()) {
      if (key == "DEF") {
        account_->encryption = Encryption::kDefault;
      } else {
        account_->encryption = Encryption::kPrivate;
        account_->key_hash = HashSecret(key);
      }
      if (!Save()) return answer_.Info(kDatabaseError, "Account could not be saved");
    }
    if (!KeyAccepted()) return answer_.Info(kWrongKey, "Incorrect encryption password");
    return answer_.Output(kSuccess);
  }

  int Register() {
    const std::string random = request_.Random();
    bool digits = random.size() >= 5 && random.size() <= 15;
    for (char c : random) digits = digits && c >= '0' && c <= '9';
    if (!digits || account_->computers.empty())
      return answer_.Info(kRegistrationFailed, "Machine registration failure");
    std::erase_if(account_->machine_codes, [&](const auto& entry) { return entry.first == random; });
    account_->machine_codes.emplace_back(random, account_->HomeComputer());
    if (!Save()) return answer_.Info(kDatabaseError, "Account could not be saved");
    return answer_.Output(kRegistered);
  }

  int Quota() {
    answer_.Write("Quota.txt", std::to_string(StoredBytes(*account_)) + "\r\n" +
                                   std::to_string(account_->quota) + "\r\n");
    return answer_.Output(kSuccess);
  }

  // 0 with Backupfile.txt, or 0 alone for an empty backup: the library makes 402 or -412 of it.
  int Listing() {
    std::optional<std::string> computer = RequestComputer(true);
    if (!computer) return answer_.Info(kMachineNotRegistered, "Machine not registered");
    if (const std::string* named = account_->FindComputer(MpcHost(answer_.folder()))) computer = *named;
    std::vector<StoredFile> files = ListFiles(account_->ComputerRoot(*computer));
    if (!files.empty()) answer_.Write("Backupfile.txt", ListingBytes(files));
    return answer_.Output(0);
  }

  // Count 0 and an empty List stand for one computer; several are "NAME|n|1;" items.
  std::vector<std::pair<std::string, std::string>> MachineValues() const {
    if (account_->computers.size() <= 1) return {{"Count", "0"}, {"List", ""}};
    std::string list;
    for (std::size_t i = 0; i < account_->computers.size(); ++i)
      list += account_->computers[i] + "|" + std::to_string(i + 1) + "|1;";
    return {{"Count", std::to_string(account_->computers.size())}, {"List", list}};
  }

  std::string Installation() const {
    std::string name = IniValue(home_ / "Configuration.ini", "ProductInfo", "ProductInstallationName");
    std::size_t begin = name.find_first_not_of("\\/");
    if (begin == std::string::npos) return {};
    return name.substr(begin, name.find_last_not_of("\\/") - begin + 1);
  }

  // Values for the library's profile of the request's user.
  bool WriteRequestProfile(const std::vector<std::pair<std::string, std::string>>& values) {
    std::string virtual_path = IniValue(home_ / "UserName.ini", "Registry", "VirtualPath");
    fs::path work_root = virtual_path.empty() ? home_ : PathFromUtf8(virtual_path);
    return WriteProfileValues(work_root, Installation(), request_.User(), values);
  }

  int MachineList() {
    if (!WriteRequestProfile(MachineValues()))
      return answer_.Info(kDatabaseError, "Profile could not be written");
    return answer_.Output(kSuccess);
  }

  // The listings go to the user folder (the exchange folder's "Temp" parent's
  // parent): one Backupfile.txt, or one per computer in a folder of its name.
  int BrowseInit() {
    const fs::path temp = answer_.folder().parent_path();
    if (!SameText(Utf8FromPath(temp.filename()), "Temp"))
      return answer_.Info(kUserVariable, "Exchange folder not below the user folder");
    const fs::path user_folder = temp.parent_path();
    if (!WriteRequestProfile(MachineValues()))
      return answer_.Info(kDatabaseError, "Profile could not be written");
    const bool several = account_->computers.size() > 1;
    for (const std::string& computer : account_->computers) {
      fs::path listing_folder = several ? user_folder / PathFromUtf8(computer) : user_folder;
      std::error_code ec;
      fs::create_directories(listing_folder, ec);
      std::vector<StoredFile> files = ListFiles(account_->ComputerRoot(computer));
      if (files.empty()) {
        fs::remove(listing_folder / "Backupfile.txt", ec);
      } else {
        WriteFileAtomically(listing_folder / "Backupfile.txt", ListingBytes(files));
      }
    }
    return answer_.Output(kSuccess);
  }

  std::optional<Target> TargetOf(const std::string& path) {
    std::optional<std::vector<std::string>> names = SplitRemotePath(path);
    // "HOMEPC\\tmp\a.txt": a computer, then a path whose top has no name (a
    // POSIX path backed up from that computer).
    const std::size_t first = path.find_first_of("\\/");
    if (names && first != std::string::npos && first + 1 < path.size() &&
        (path[first + 1] == '\\' || path[first + 1] == '/')) {
      if (auto rest = SplitRemotePath(path.substr(first + 1))) {
        rest->insert(rest->begin(), path.substr(0, first));
        names = std::move(rest);
      }
    }
    std::optional<std::string> computer = RequestComputer(false);
    if (!names || !computer) return std::nullopt;
    return ResolveTarget(*account_, std::move(*names), MpcHost(answer_.folder()), *computer);
  }

  int Versions() {
    std::optional<Target> target = TargetOf(request_.Line(13));
    fs::path node = target ? NodePath(account_->ComputerRoot(target->computer), target->names) : fs::path();
    std::vector<VersionRecord> versions =
        target && !target->names.empty() && IsFileNode(node) ? ReadVersions(node) : std::vector<VersionRecord>();
    if (versions.empty()) {
      answer_.Write("BackupVersion.txt", "0\r\n");
      return answer_.Info(kNothingToRestore, "Unable to get files from server");
    }
    std::string text;
    for (const VersionRecord& version : versions)
      text += std::to_string(version.number) + "/" + FormatDate(version.written) + "/" +
              FormatDate(version.created) + "/" + std::to_string(version.size) + "|";
    answer_.Write("BackupVersion.txt", text + "\r\n");
    return answer_.Output(kSuccess);
  }

  int Delete() {
    std::optional<std::string> bytes = ReadWholeFile(answer_.folder() / "InputDelete.txt");
    if (!bytes) return answer_.Info(kNotOnServer, "Nothing to delete");
    if (!RequestComputer(true)) return answer_.Info(kMachineNotRegistered, "Machine not registered");
    bool all_found = true;
    for (const std::string& raw : SplitLines(DecodeAnyText(*bytes))) {
      std::string line = Trim(raw);
      if (line.empty()) continue;
      std::optional<Target> target = TargetOf(line);
      // A whole computer is never deleted by one line.
      if (!target || target->names.empty()) {
        all_found = false;
        continue;
      }
      fs::path node = NodePath(account_->ComputerRoot(target->computer), target->names);
      std::error_code ec;
      all_found = fs::is_directory(node, ec) && vault_.RemoveNode(node) && all_found;
    }
    if (!all_found) return answer_.Info(kNotOnServer, "File to be deleted not available on the server");
    return answer_.Output(kSuccess);
  }

  int Upload() {
    std::optional<std::string> computer = RequestComputer(true);
    if (!computer) return answer_.Info(kMachineNotRegistered, "Machine not registered");
    if (!KeyAccepted()) return answer_.Info(kWrongKey, "Incorrect encryption password");
    struct Item {
      std::string bytes;
      std::vector<std::string> names;
      SysSeconds written;
    };
    std::vector<Item> items;
    std::uint64_t incoming = 0;
    for (const std::string& raw :
         SplitLines(DecodeAnyText(ReadWholeFile(answer_.folder() / "ToBackup.txt").value_or("")))) {
      std::string local = Trim(raw);
      if (local.empty()) continue;
      const fs::path file = PathFromUtf8(local);
      std::optional<std::string> bytes = ReadWholeFile(file);
      std::optional<std::vector<std::string>> names = SplitRemotePath(local);
      if (!bytes || !names || names->empty()) continue;
      incoming += bytes->size();
      items.push_back({std::move(*bytes), std::move(*names), FileWriteTime(file).value_or(Now())});
    }
    if (StoredBytes(*account_) + incoming > account_->quota)
      return answer_.Info(kNoSpace, "Quota exceeded");
    const fs::path root = account_->ComputerRoot(*computer);
    int uploaded = 0;
    for (const Item& item : items) {
      const bool crash = ++uploaded == vault_.settings().crash_during_upload;
      if (!AddVersion(NodePath(root, item.names), item.bytes, item.written, Now(), crash))
        return answer_.Info(kDatabaseError, "File creation failed in server");
    }
    answer_.Write("DLLOutput1.txt", std::to_string(uploaded) + "\r\n");
    return answer_.Output(kSuccess);
  }

  int Restore() {
    std::vector<std::string> lines =
        SplitLines(DecodeAnyText(ReadWholeFile(answer_.folder() / "restdestdir.txt").value_or("")));
    const std::string destination = lines.size() > 2 ? Trim(lines[2]) : std::string();
    std::optional<Target> target = TargetOf(lines.size() > 3 ? lines[3] : std::string());
    if (!target) return answer_.Info(kNothingToRestore, "Path refused");
    if (!KeyAccepted()) return answer_.Info(kWrongKey, "Incorrect encryption password");
    const fs::path node = NodePath(account_->ComputerRoot(target->computer), target->names);
    std::vector<StoredFile> files = ListFiles(node, target->names);
    if (files.empty()) return answer_.Info(kNothingToRestore, "Unable to get files from server");
    if (destination.empty()) return answer_.Info(kDestinationProtected, "No destination");
    // Each item lands under its own name: the folder (or file) named last in the path, and below it.
    const std::size_t keep_from = target->names.empty() ? 0 : target->names.size() - 1;
    for (const StoredFile& file : files) {
      fs::path local = PathFromUtf8(destination);
      for (std::size_t i = keep_from; i < file.names.size(); ++i) local /= PathFromUtf8(LocalName(file.names[i]));
      std::error_code ec;
      fs::create_directories(local.parent_path(), ec);
      const VersionRecord& latest = file.versions.back();
      std::optional<std::string> bytes = ReadWholeFile(VersionData(file.node, latest.number));
      if (!bytes) return answer_.Info(kNothingToRestore, "Unable to get files from server");
      if (!WriteFileAtomically(local, *bytes))
        return answer_.Info(kDestinationProtected, "Destination cannot be written");
      SetFileWriteTime(local, latest.written);
    }
    answer_.Write("DLLOutput1.txt", std::to_string(files.size()) + "\r\n");
    return answer_.Output(kSuccess);
  }

  Vault vault_;
  fs::path home_;
  Answer answer_;
  Request request_;
  Account* account_ = nullptr;
};

}  // namespace

std::optional<fs::path> ConfiguredVault(const fs::path& home) {
  std::error_code ec;
  if (std::optional<std::string> text = ReadWholeFile(home / "engine-vault.txt")) {
    for (const std::string& raw : SplitLines(DecodeAnyText(*text))) {
      std::string line = Trim(raw);
      if (line.empty() || line[0] == '#') continue;
      fs::path named = PathFromUtf8(line);
      return named.is_absolute() ? named : home / named;
    }
  }
  if (fs::is_directory(home / "vault", ec)) return home / "vault";
  return std::nullopt;
}

int AnswerFromVault(const fs::path& vault_root, const fs::path& home, long long code,
                    const fs::path& folder) {
  std::string error;
  std::optional<Vault> vault = Vault::Open(vault_root, &error);
  if (!vault) {
    Answer(folder).Info(kDatabaseError, error);
    return 4;
  }
  return Service(std::move(*vault), home, folder).Run(code);
}

}  // namespace tavrine::refengine
