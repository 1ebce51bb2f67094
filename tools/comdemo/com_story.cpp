// The demo's story through TavrinEUI.dll. Every product call goes through COM:
// CoCreateInstance by ProgID, then the class's default interface. The vault is
// only read, to check what the calls answered.
#include "com_story.h"

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdint>
#include <cstdio>
#include <cwctype>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "TavrinEUI.h"
#include "com/com_ptr.h"
#include "console.h"

namespace tavrine::comdemo {
namespace {

namespace fs = std::filesystem;
using com::ComPtr;
using com::MakeBstr;
using com::UniqueBstr;
using com::UniqueVariant;
// The engine process handles the DLL hands out.
using platform::win32::UniqueHandle;

// The sample vault's account with a private key and two computers.
constexpr const wchar_t* kUser = L"anna";
constexpr const wchar_t* kPassword = L"anna-pass";
constexpr const wchar_t* kKey = L"anna-key-2024";
constexpr const wchar_t* kComputer = L"HOMEPC";
constexpr const wchar_t* kReport = L"HOMEPC\\C:\\Documents\\Reports\\2023\\Q1 report.txt";
constexpr const wchar_t* kReportsFolder = L"HOMEPC\\C:\\Documents\\Reports";
constexpr const wchar_t* kMusicFolder = L"HOMEPC\\D:\\Music\\";
constexpr const wchar_t* kDeletedName = L"Caf\u00e9 del Mar.txt";
constexpr DWORD kEngineWaitMs = 120000;
constexpr LONG kCancelled = 401;

// A COM call that failed outright (not a product result code): ends the step.
class CallFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void Check(HRESULT hr, const char* call) {
  if (FAILED(hr)) {
    char text[32];
    std::snprintf(text, sizeof text, " failed: 0x%08lX", static_cast<unsigned long>(hr));
    throw CallFailed(std::string(call) + text);
  }
}

template <class T>
ComPtr<T> Create(const wchar_t* prog_id, REFIID iid) {
  CLSID clsid{};
  Check(CLSIDFromProgID(prog_id, &clsid), "CLSIDFromProgID (is TavrinEUI.dll registered?)");
  ComPtr<T> object;
  Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.put_void()), "CoCreateInstance");
  return object;
}

LONG VariantLong(const VARIANT* value) {
  UniqueVariant converted;
  if (FAILED(VariantChangeType(converted.get(), const_cast<VARIANT*>(value), 0, VT_I4))) return -1;
  return V_I4(converted.get());
}

// The find record owns its two strings.
struct FindRecord {
  TavrinE_WIN32_FIND_DATA data{};
  FindRecord() = default;
  FindRecord(const FindRecord&) = delete;
  FindRecord& operator=(const FindRecord&) = delete;
  ~FindRecord() {
    SysFreeString(data.cFilename);
    SysFreeString(data.strUnimode);
  }
  std::wstring name() const {
    return data.cFilename ? std::wstring(data.cFilename, SysStringLen(data.cFilename)) : std::wstring();
  }
};

std::wstring TimeText(const TavrinE_FILETIME& time) {
  FILETIME file_time{static_cast<DWORD>(time.dwLowDateTime), static_cast<DWORD>(time.dwHighDateTime)};
  SYSTEMTIME system{};
  if (!FileTimeToSystemTime(&file_time, &system)) return L"?";
  wchar_t text[32];
  std::swprintf(text, 32, L"%04u-%02u-%02u %02u:%02u:%02u", system.wYear, system.wMonth, system.wDay,
                system.wHour, system.wMinute, system.wSecond);
  return text;
}

std::wstring Lower(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(c));
  return text;
}

std::string ReadBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

bool WriteBytes(const fs::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << bytes;
  return static_cast<bool>(out);
}

// UTF-16LE with a byte-order mark, CR LF: the form the shell side writes its lists in.
bool WriteUtf16Lines(const fs::path& file, const std::vector<std::wstring>& lines) {
  std::string bytes = "\xFF\xFE";
  for (const std::wstring& line : lines) {
    for (wchar_t c : line + L"\r\n") {
      bytes += static_cast<char>(c & 0xFF);
      bytes += static_cast<char>((c >> 8) & 0xFF);
    }
  }
  return WriteBytes(file, bytes);
}

// Version n of a sample text file: n lines "<path> version n line i" CR LF.
std::string SampleText(const std::wstring& path, int version) {
  std::string text;
  for (int line = 1; line <= version; ++line) {
    text += Utf8(path) + " version " + std::to_string(version) + " line " + std::to_string(line) + "\r\n";
  }
  return text;
}

// A node of the sample vault; its names here need only ':' encoded.
fs::path VaultNode(const fs::path& vault, const std::wstring& computer, const std::wstring& path) {
  fs::path node = vault / L"accounts" / kUser / L"computers" / computer;
  std::wstringstream names(path);
  for (std::wstring name; std::getline(names, name, L'\\');) {
    std::wstring encoded;
    for (wchar_t c : name) encoded += c == L':' ? std::wstring(L"%3A") : std::wstring(1, c);
    node /= encoded;
  }
  return node;
}

// What the account stores: every version's bytes count against the quota.
std::uintmax_t VaultUsedBytes(const fs::path& vault) {
  std::uintmax_t used = 0;
  std::error_code error;
  for (const auto& item : fs::recursive_directory_iterator(vault / L"accounts" / kUser / L"computers", error)) {
    const std::wstring name = item.path().filename().wstring();
    if (item.is_regular_file() && name.size() > 1 && name[0] == L'=' &&
        name.find_first_not_of(L"0123456789", 1) == std::wstring::npos) {
      used += item.file_size();
    }
  }
  return used;
}

struct Entry {
  std::wstring name;
  bool is_folder = false;
  std::wstring folder_path;
  LONGLONG size = 0;
  short versions = 0;
};

// One folder's children from the find-first / find-next walk. The walk hands
// back every path below the folder; a name with a separator is a subfolder.
std::vector<Entry> ListFolder(_TavrinEenum* browser, const std::wstring& folder) {
  std::map<std::wstring, Entry> children;
  FindRecord record;
  UniqueVariant first;
  UniqueBstr folder_text = MakeBstr(folder);
  Check(browser->TavrinEFindFirstFile(folder_text.get(), &record.data, first.get()), "TavrinEFindFirstFile");
  for (LONG at = VariantLong(first.get()); at != -1;) {
    std::wstring name = record.name();
    // A POSIX path backed up as "\tmp\..." leaves an empty name between separators.
    const std::size_t leading = name.find_first_not_of(L'\\');
    if (leading != std::wstring::npos) {
      const std::wstring prefix = name.substr(0, leading);
      name.erase(0, leading);
      const std::size_t separator = name.find(L'\\');
      const bool folder_line = separator != std::wstring::npos;
      const bool deeper = folder_line && separator + 1 < name.size();
      const std::wstring own = folder_line ? name.substr(0, separator) : name;
      Entry& entry = children[Lower(own)];
      entry.name = own;
      if (folder_line) {
        entry.is_folder = true;
        entry.folder_path = folder + prefix + own + L"\\";
      }
      if (!deeper) {
        entry.size = record.data.nFileSize.int64;
        entry.versions = record.data.nVersion;
      }
    }
    LONG next = -1;
    Check(browser->TavrinENextFile(&record.data, &next), "TavrinENextFile");
    at = next;
  }
  std::vector<Entry> folders, files;
  for (auto& [key, entry] : children) (entry.is_folder ? folders : files).push_back(std::move(entry));
  folders.insert(folders.end(), files.begin(), files.end());
  return folders;
}

void PrintTree(_TavrinEenum* browser, const std::wstring& folder, const std::wstring& indent, int& folders,
               int& files) {
  const std::vector<Entry> entries = ListFolder(browser, folder);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool last = i + 1 == entries.size();
    const Entry& entry = entries[i];
    if (entry.is_folder) {
      Say(L"   " + indent + (last ? L"`-- " : L"|-- ") + entry.name + L"\\");
      ++folders;
      PrintTree(browser, entry.folder_path, indent + (last ? L"    " : L"|   "), folders, files);
    } else {
      Say(L"   " + indent + (last ? L"`-- " : L"|-- ") + entry.name + L"  (" + std::to_wstring(entry.size) +
          L" bytes, v" + std::to_wstring(entry.versions) + L")");
      ++files;
    }
  }
}

struct Version {
  short number = 0;
  LONGLONG size = 0;
  std::wstring written;
};

// Newest first, as the version history hands them out.
std::vector<Version> Versions(_TavrinEenum* browser, const std::wstring& remote_file) {
  std::vector<Version> versions;
  TavrinE_FILEVERSIONS record{};
  LONG at = -1;
  UniqueBstr file = MakeBstr(remote_file);
  Check(browser->GetFirstVersion(file.get(), &record, &at), "GetFirstVersion");
  while (at != -1) {
    versions.push_back({record.nVersion, record.nFileSize.int64, TimeText(record.ftLastWriteTime)});
    Check(browser->GetNextVersion(&record, &at), "GetNextVersion");
  }
  return versions;
}

class Story {
 public:
  Story(std::wstring work, std::wstring vault) : work_(std::move(work)), vault_(std::move(vault)) {}

  bool Run() {
    fs::create_directories(work_);
    client_ = Create<_clsClient>(L"TavrinEUI.clsClient", IID__clsClient);
    commands_ = Create<_UICommands>(L"TavrinEUI.UICommands", IID__UICommands);
    browser_ = Create<_TavrinEenum>(L"TavrinEUI.TavrinEenum", IID__TavrinEenum);
    Step(L"login", L"clsClient.UpdateUserProfile, clsAPI_Interface.API_AutoReconnect", [&] { return Login(); });
    Step(L"quota", L"UICommands.W_GetQuota_Command", [&] { return Quota(); });
    Step(L"browse", L"TavrinEenum.TavrinEInit, TavrinEFindFirstFile / TavrinENextFile", [&] { return Browse(); });
    Step(L"versions", L"TavrinEenum.GetFirstVersion / GetNextVersion", [&] { return ShowVersions(); });
    Step(L"restore", L"CRestore.W_Restore, then wait on its handle", [&] { return Restore(); });
    Step(L"delete", L"UICommands.W_DeleteRemoteFiles", [&] { return Delete(); });
    Step(L"backup", L"CBackup.W_BackupInit / W_DoBackup, twice", [&] { return Backup(); });
    Step(L"schedule", L"CBackup with a scheduled backup running: paused, then resumed", [&] { return Schedule(); });
    Step(L"cancel", L"CBackup cancelled before the compare and before the upload", [&] { return Cancel(); });
    Step(L"firewall", L"clsAPI_Interface.API_FirewallSettings", [&] { return Firewall(); });
    Step(L"messages", L"UICommands.W_GetMessageString / W_GetMessageInfo", [&] { return Messages(); });
    int failed = 0;
    for (bool ok : outcomes_) failed += ok ? 0 : 1;
    Say(L"com story: " + std::to_wstring(outcomes_.size() - failed) + L" steps ok, " + std::to_wstring(failed) +
        L" failed");
    return failed == 0;
  }

 private:
  // A step gives its verdict and the figures worth a summary line.
  struct Verdict {
    bool ok;
    std::wstring figures;
  };

  void Step(const std::wstring& name, const std::wstring& calls, const std::function<Verdict()>& body) {
    Say(L"");
    Say(L"== " + name + L": " + calls);
    Verdict verdict{false, L""};
    try {
      verdict = body();
    } catch (const std::exception& error) {
      verdict = {false, Wide(error.what())};
    }
    outcomes_.push_back(verdict.ok);
    Say(L"STEP " + name + (verdict.ok ? L" ok " : L" FAILED ") + verdict.figures);
  }

  std::wstring Profile(const wchar_t* name) {
    UniqueBstr key = MakeBstr(name);
    UniqueBstr value;
    Check(client_->GetUserProfile(key.get(), value.put()), "GetUserProfile");
    return std::wstring(value.view());
  }
  void SetProfile(const wchar_t* name, const std::wstring& value) {
    UniqueBstr key = MakeBstr(name);
    UniqueBstr data = MakeBstr(value);
    Check(client_->UpdateUserProfile(key.get(), data.get()), "UpdateUserProfile");
  }
  LONG AutoReconnect() {
    ComPtr<_clsAPI_Interface> api = Create<_clsAPI_Interface>(L"TavrinEUI.clsAPI_Interface", IID__clsAPI_Interface);
    LONG result = 0;
    Check(api->API_AutoReconnect(&result), "API_AutoReconnect");
    return result;
  }
  std::wstring MessageText(LONG code) {
    UniqueBstr text = MakeBstr(L"");
    LONG found = 0;
    Check(commands_->W_GetMessageString(code, text.addressof(), &found), "W_GetMessageString");
    return found ? std::wstring(text.view()) : L"(no text)";
  }

  // The profile is what a login leaves behind; the silent reconnect (engine
  // code 116) then checks the password and stores the server address.
  Verdict Login() {
    SetProfile(L"CurrentUser", kUser);
    SetProfile(L"Default User name", kUser);
    SetProfile(L"username", kUser);
    SetProfile(L"password", L"not-annas-password");
    SetProfile(L"encpasswordnew", kKey);
    const LONG refused = AutoReconnect();
    Say(L"   wrong password: API_AutoReconnect -> " + std::to_wstring(refused) + L" \"" + MessageText(refused) + L"\"");
    SetProfile(L"password", kPassword);
    const LONG answer = AutoReconnect();
    UniqueBstr current;
    Check(client_->GetCurrentUser(current.put()), "GetCurrentUser");
    UniqueBstr shown = MakeBstr(L"");
    LONG named = 0;
    Check(commands_->W_GetCurrentUserName(shown.addressof(), &named), "W_GetCurrentUserName");
    const std::wstring server = Profile(L"serverip") + L":" + Profile(L"port");
    Say(L"   API_AutoReconnect -> " + std::to_wstring(answer) + L", current user " + std::wstring(current.view()) +
        L", W_GetCurrentUserName \"" + std::wstring(shown.view()) + L"\", server " + server);
    const bool ok = refused == -403 && answer == 402 && current.view() == kUser && shown.view() == kUser;
    return {ok, L"user " + std::wstring(current.view()) + L", wrong password " + std::to_wstring(refused) +
                    L", login " + std::to_wstring(answer) + L", server " + server};
  }

  Verdict Quota() {
    double max_size = -2, used = -2;
    UniqueVariant result;
    Check(commands_->W_GetQuota_Command(&max_size, &used, result.get()), "W_GetQuota_Command");
    const std::uintmax_t stored = VaultUsedBytes(vault_);
    Say(L"   W_GetQuota_Command -> " + std::to_wstring(VariantLong(result.get())) + L": used " +
        std::to_wstring(static_cast<long long>(used)) + L" bytes of " + std::to_wstring(static_cast<long long>(max_size)) +
        L" (the vault holds " + std::to_wstring(stored) + L" bytes of versions)");
    const bool ok = used == static_cast<double>(stored) && max_size == 2147483648.0;
    return {ok, L"used " + std::to_wstring(static_cast<long long>(used)) + L" of " +
                    std::to_wstring(static_cast<long long>(max_size)) + L" bytes"};
  }

  // The computers, from the machine list the account's listing run stored.
  std::vector<std::wstring> Computers() {
    std::vector<std::wstring> names;
    std::wstringstream list(Profile(L"List"));  // NAME|n|1;NAME|n|1;
    for (std::wstring item; std::getline(list, item, L';');) {
      if (!item.empty()) names.push_back(item.substr(0, item.find(L'|')));
    }
    return names;
  }

  Verdict Browse() {
    short loaded = 0;
    Check(browser_->TavrinEInit(&loaded), "TavrinEInit");
    UniqueVariant count;
    Check(browser_->ReadMachineList(count.get()), "ReadMachineList");
    const std::vector<std::wstring> computers = Computers();
    Say(L"   TavrinEInit -> " + std::to_wstring(loaded) + L", ReadMachineList -> " +
        std::to_wstring(VariantLong(count.get())));
    int folders = 0, files = 0;
    for (const std::wstring& computer : computers) {
      Say(L"   " + computer + L"\\");
      PrintTree(browser_.get(), computer + L"\\", L"", folders, files);
    }
    Say(L"   " + std::to_wstring(folders) + L" folders, " + std::to_wstring(files) + L" files");
    std::wstring names;
    for (const std::wstring& computer : computers) names += (names.empty() ? L"" : L" ") + computer;
    const bool ok = loaded == 1 && computers.size() == 2 && folders == 10 && files == 6;
    return {ok, names + L": " + std::to_wstring(folders) + L" folders, " + std::to_wstring(files) + L" files"};
  }

  Verdict ShowVersions() {
    const std::vector<Version> versions = Versions(browser_.get(), kReport);
    Say(L"   " + std::wstring(kReport));
    bool sizes_match = !versions.empty();
    for (const Version& version : versions) {
      const fs::path data = VaultNode(vault_, kComputer, std::wstring(kReport).substr(7)) /
                            (L"=" + std::to_wstring(version.number));
      std::error_code error;
      sizes_match = sizes_match && static_cast<std::uintmax_t>(version.size) == fs::file_size(data, error);
      Say(L"   v" + std::to_wstring(version.number) + L"  " + version.written + L"  " +
          std::to_wstring(version.size) + L" bytes");
    }
    const bool ok = versions.size() == 3 && versions.front().number == 3 && sizes_match;
    return {ok, std::to_wstring(versions.size()) + L" versions of Q1 report.txt, newest " +
                    (versions.empty() ? L"-" : std::to_wstring(versions.front().size) + L" bytes")};
  }

  // Starts the restore and waits on the engine whose handle it returns; the
  // engine's answer code.
  LONG RestoreInto(const std::wstring& remote, const fs::path& destination, const fs::path& temp) {
    fs::create_directories(destination);
    fs::create_directories(temp);
    ComPtr<_CRestore> restore = Create<_CRestore>(L"TavrinEUI.CRestore", IID__CRestore);
    UniqueBstr dest_text = MakeBstr(destination.wstring());
    UniqueBstr remote_text = MakeBstr(remote);
    UniqueBstr temp_text = MakeBstr(temp.wstring());
    LONG handle_value = -1;
    Check(restore->W_Restore(dest_text.get(), remote_text.get(), temp_text.get(), &handle_value), "W_Restore");
    if (handle_value == -1) return -1;
    UniqueHandle engine(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(handle_value)));
    if (WaitForSingleObject(engine.get(), kEngineWaitMs) != WAIT_OBJECT_0) return -1;
    return ReadAnswer(temp);
  }

  LONG ReadAnswer(const fs::path& folder) {
    UniqueBstr folder_text = MakeBstr(folder.wstring());
    VARIANT_BOOL answered = VARIANT_FALSE;
    UniqueBstr description = MakeBstr(L"");
    double value = 0;
    Check(client_->ReadDLLOutputFileTempFd(folder_text.get(), &answered, description.addressof(), &value),
          "ReadDLLOutputFileTempFd");
    return static_cast<LONG>(value);
  }

  Verdict Restore() {
    const fs::path destination = work_ / L"restored";
    const LONG code = RestoreInto(kReportsFolder, destination, work_ / L"temp-restore");
    const fs::path restored = destination / L"Reports" / L"2023" / L"Q1 report.txt";
    const std::string bytes = ReadBytes(restored);
    const std::string in_vault =
        ReadBytes(VaultNode(vault_, kComputer, L"C:\\Documents\\Reports\\2023\\Q1 report.txt") / L"=3");
    const std::string expected = SampleText(L"C:\\Documents\\Reports\\2023\\Q1 report.txt", 3);
    int restored_files = 0;
    std::error_code error;
    for (const auto& item : fs::recursive_directory_iterator(destination, error)) {
      restored_files += item.is_regular_file() ? 1 : 0;
    }
    Say(L"   W_Restore " + std::wstring(kReportsFolder) + L" -> engine answer " + std::to_wstring(code) + L", " +
        std::to_wstring(restored_files) + L" file(s) in " + destination.wstring());
    Say(L"   " + restored.wstring() + L": " + std::to_wstring(bytes.size()) + L" bytes, " +
        (bytes == in_vault ? L"equal to" : L"DIFFERENT from") + L" the vault's version 3, " +
        (bytes == expected ? L"equal to" : L"DIFFERENT from") + L" the expected text");
    const bool ok = code == 402 && restored_files == 1 && !bytes.empty() && bytes == in_vault && bytes == expected;
    return {ok, L"1 folder -> " + std::to_wstring(restored_files) + L" file, " + std::to_wstring(bytes.size()) +
                    L" bytes, " + (ok ? L"bytes match" : L"bytes DIFFER")};
  }

  bool MusicHolds(const std::wstring& name) {
    for (const Entry& entry : ListFolder(browser_.get(), kMusicFolder)) {
      if (Lower(entry.name) == Lower(name)) return true;
    }
    return false;
  }

  Verdict Delete() {
    const std::wstring item = std::wstring(kMusicFolder) + kDeletedName;
    const bool listed_before = MusicHolds(kDeletedName);
    const fs::path list = work_ / L"InputDelete.txt";
    if (!WriteUtf16Lines(list, {item})) return {false, L"InputDelete.txt could not be written"};
    UniqueBstr list_text = MakeBstr(list.wstring());
    LONG result = 0;
    Check(commands_->W_DeleteRemoteFiles(list_text.get(), &result), "W_DeleteRemoteFiles");
    short loaded = 0;
    Check(browser_->TavrinEInit(&loaded), "TavrinEInit");
    const bool listed_after = MusicHolds(kDeletedName);
    std::error_code error;
    const bool in_vault = fs::exists(VaultNode(vault_, kComputer, L"D:\\Music\\" + std::wstring(kDeletedName)), error);
    Say(L"   W_DeleteRemoteFiles " + item + L" -> " + std::to_wstring(result));
    Say(L"   listed before: " + std::wstring(listed_before ? L"yes" : L"no") + L", after a new TavrinEInit: " +
        (listed_after ? L"yes" : L"no") + L"; in the vault: " + (in_vault ? L"yes" : L"no"));
    const bool ok = result == 1 && listed_before && !listed_after && !in_vault;
    return {ok, std::wstring(kDeletedName) + (ok ? L" gone from the listing and the vault" : L" still there")};
  }

  // One manual backup of `local`: compare, upload, wait for the engine. The
  // shell side's moment between the compare and the upload is `between`
  // (a false from it cancels the backup there, as the user's button would).
  LONG BackupOnce(const std::wstring& local, const fs::path& temp,
                  const std::function<bool()>& between = [] { return true; }) {
    fs::create_directories(temp);
    if (!WriteUtf16Lines(temp / L"InputList.txt", {local})) return -1;
    ComPtr<_CBackup> backup = Create<_CBackup>(L"TavrinEUI.CBackup", IID__CBackup);
    UniqueBstr temp_text = MakeBstr(temp.wstring());
    LONG compared = -1, ignored = 0;
    Check(backup->W_BackupInit(0, temp_text.get(), &compared), "W_BackupInit");
    if (compared != 1) {
      backup->W_BackupExitInstance(&ignored);
      return compared == 0 || compared == kCancelled ? compared : -1;
    }
    if (!between()) WriteBytes(temp / L"cancel.txt", "");
    LONG completed = 0, started = -1;
    Check(backup->W_DoBackup(&completed, &started), "W_DoBackup");
    LONG code = started == kCancelled ? kCancelled : -1;
    if (started == 1) {
      // The profile's TavrinEClientPID is what API_ENTRY returned: the upload
      // engine's process handle, now ours to wait on and close.
      const long long value = std::wcstoll(Profile(L"TavrinEClientPID").c_str(), nullptr, 10);
      if (value > 0) {
        UniqueHandle engine(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(value)));
        if (WaitForSingleObject(engine.get(), kEngineWaitMs) == WAIT_OBJECT_0) code = ReadAnswer(temp);
      }
    }
    backup->W_BackupExitInstance(&ignored);
    return code;
  }

  Verdict Backup() {
    const fs::path local_folder = work_ / L"local";
    fs::create_directories(local_folder);
    const fs::path local = local_folder / L"notes.txt";
    const std::wstring remote = std::wstring(kComputer) + L"\\" + local.wstring();
    const std::string first = "notes, first draft\r\n";
    const std::string changed = first + "notes, a line added later\r\n";
    WriteBytes(local, first);
    const LONG first_code = BackupOnce(local.wstring(), work_ / L"temp-backup-1");
    WriteBytes(local, changed);
    const LONG second_code = BackupOnce(local.wstring(), work_ / L"temp-backup-2");
    const std::vector<Version> versions = Versions(browser_.get(), remote);
    Say(L"   " + local.wstring() + L": first upload -> " + std::to_wstring(first_code) + L", changed -> " +
        std::to_wstring(second_code));
    Say(L"   " + remote);
    for (const Version& version : versions) {
      Say(L"   v" + std::to_wstring(version.number) + L"  " + version.written + L"  " +
          std::to_wstring(version.size) + L" bytes");
    }
    // The round trip: the newest version restored is the changed file.
    const fs::path destination = work_ / L"restored-notes";
    const LONG restore_code = RestoreInto(remote, destination, work_ / L"temp-restore-notes");
    const std::string back = ReadBytes(destination / L"notes.txt");
    Say(L"   restored again -> " + std::to_wstring(restore_code) + L", " + std::to_wstring(back.size()) +
        L" bytes, " + (back == changed ? L"equal to" : L"DIFFERENT from") + L" the changed file");
    const bool ok = first_code == 402 && second_code == 402 && versions.size() == 2 &&
                    versions.front().number == 2 && versions.front().size == static_cast<LONGLONG>(changed.size()) &&
                    back == changed;
    return {ok, L"notes.txt now v" + std::to_wstring(versions.empty() ? 0 : versions.front().number) + L" (" +
                    std::to_wstring(versions.empty() ? 0 : versions.front().size) + L" bytes), restored bytes " +
                    (back == changed ? L"match" : L"DIFFER")};
  }

  // <work root><installation name><user>: where the scheduler and the
  // library leave each other their notes. The work root is the DLL's folder
  // unless UserName.ini names another.
  fs::path WorkRoot() {
    wchar_t module[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(L"TavrinEUI.dll"), module, MAX_PATH);
    const fs::path install = fs::path(module).parent_path();
    wchar_t virtual_path[MAX_PATH] = {};
    GetPrivateProfileStringW(L"Registry", L"VirtualPath", L"", virtual_path, MAX_PATH,
                             (install / L"UserName.ini").c_str());
    return virtual_path[0] ? fs::path(virtual_path) : install;
  }
  std::wstring InstallationName() {
    wchar_t module[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(L"TavrinEUI.dll"), module, MAX_PATH);
    wchar_t name[MAX_PATH] = {};
    GetPrivateProfileStringW(L"ProductInfo", L"ProductInstallationName", L"", name, MAX_PATH,
                             (fs::path(module).parent_path() / L"Configuration.ini").c_str());
    return name;
  }
  fs::path AccountFolder() {
    fs::path folder = WorkRoot().wstring();
    if (!folder.wstring().empty() && folder.wstring().back() != L'\\') folder += L"\\";
    return fs::path(folder.wstring() + InstallationName() + kUser);
  }
  bool ScheduleRunning(_CBackup* backup) {
    UniqueBstr user = MakeBstr(kUser);
    VARIANT_BOOL running = VARIANT_FALSE;
    Check(backup->IsScheduleBackupRunning(user.get(), &running), "IsScheduleBackupRunning");
    return running != VARIANT_FALSE;
  }
  static std::wstring YesNo(bool value) { return value ? L"yes" : L"no"; }

  // The scheduler is played by hand: it writes scheduleData.txt, and answers
  // the pause request by writing "0" there until the request is gone.
  Verdict Schedule() {
    const fs::path account = AccountFolder();
    fs::create_directories(account);
    const fs::path data = account / L"scheduleData.txt";
    const fs::path status = account / L"schedulerStatus.txt";
    const std::string scheduled_run = "4711\r\nnightly backup 02:00\r\n";
    WriteBytes(data, scheduled_run);
    ComPtr<_CBackup> observer = Create<_CBackup>(L"TavrinEUI.CBackup", IID__CBackup);
    const bool running_before = ScheduleRunning(observer.get());

    const fs::path local = work_ / L"local" / L"notes.txt";
    const std::string third = ReadBytes(local) + "notes, a third line written during the night\r\n";
    WriteBytes(local, third);
    std::string request;
    std::wstring upload_flag_during;
    bool paused = false;
    const LONG code = BackupOnce(local.wstring(), work_ / L"temp-backup-3", [&] {
      request = ReadBytes(status);
      upload_flag_during = Profile(L"UPLOAD");
      WriteBytes(data, "0\r\nnightly backup 02:00\r\n");  // the scheduler holds still
      paused = !ScheduleRunning(observer.get());
      return true;
    });
    const bool request_gone = !fs::exists(status);
    const std::wstring upload_flag_after = Profile(L"UPLOAD");
    if (request_gone) WriteBytes(data, scheduled_run);  // the scheduler goes on
    const bool running_after = ScheduleRunning(observer.get());
    std::error_code error;
    fs::remove(data, error);

    Say(L"   scheduleData.txt: run 4711 \"nightly backup 02:00\"; IsScheduleBackupRunning -> " + YesNo(running_before));
    Say(L"   after W_BackupInit: schedulerStatus.txt = \"" + Wide(request.substr(0, request.find("\r\n"))) +
        L" | 4711 | ...\", UPLOAD = " + upload_flag_during + L", scheduler paused: " + YesNo(paused));
    Say(L"   upload -> " + std::to_wstring(code) + L"; after W_BackupExitInstance: schedulerStatus.txt " +
        (request_gone ? L"gone" : L"STILL THERE") + L", UPLOAD = " + upload_flag_after +
        L", scheduler running again: " + YesNo(running_after));
    const bool ok = running_before && request == "PAUSE\r\n4711\r\nnightly backup 02:00\r\n" &&
                    upload_flag_during == L"TRUE" && paused && code == 402 && request_gone &&
                    upload_flag_after != L"TRUE" && running_after;
    return {ok, L"scheduled run 4711 paused during the upload (" + std::to_wstring(code) + L"), resumed after"};
  }

  // Cancel twice: cancel.txt already there when the compare starts, and
  // written by the user between the compare and the upload.
  Verdict Cancel() {
    const fs::path local = work_ / L"local" / L"draft.txt";
    WriteBytes(local, "a draft never to be uploaded\r\n");
    const fs::path early = work_ / L"temp-cancel-1";
    fs::create_directories(early);
    WriteBytes(early / L"cancel.txt", "");
    const LONG before_compare = BackupOnce(local.wstring(), early);
    const LONG before_upload = BackupOnce(local.wstring(), work_ / L"temp-cancel-2", [] { return false; });
    const std::wstring upload_started = Profile(L"IsUploadStarted");
    const std::wstring upload_flag = Profile(L"UPLOAD");
    const bool in_vault = fs::exists(VaultNode(vault_, kComputer, local.wstring()));
    const bool pause_left = fs::exists(AccountFolder() / L"schedulerStatus.txt");
    Say(L"   cancel.txt before the compare: W_BackupInit -> " + std::to_wstring(before_compare));
    Say(L"   cancel.txt before the upload:  W_DoBackup -> " + std::to_wstring(before_upload) +
        L"; IsUploadStarted = " + upload_started + L", UPLOAD = " + upload_flag + L", in the vault: " +
        YesNo(in_vault) + L", pause request left: " + YesNo(pause_left));
    const bool ok = before_compare == kCancelled && before_upload == kCancelled && upload_started != L"TRUE" &&
                    upload_flag != L"TRUE" && !in_vault && !pause_left;
    return {ok, L"401 before the compare, 401 before the upload, nothing uploaded"};
  }

  // The probe starts the engine without waiting; the engine leaves the marker
  // "<installation>Client.txt" when it got through. While the marker stands,
  // a probe runs nothing.
  Verdict Firewall() {
    ComPtr<_clsAPI_Interface> api = Create<_clsAPI_Interface>(L"TavrinEUI.clsAPI_Interface", IID__clsAPI_Interface);
    fs::path root = WorkRoot().wstring();
    const fs::path marker = fs::path(root.wstring() + (root.wstring().back() == L'\\' ? L"" : L"\\") +
                                     InstallationName() + L"Client.txt");
    std::error_code error;
    fs::remove(marker, error);
    LONG first = -1;
    Check(api->API_FirewallSettings(&first), "API_FirewallSettings");
    // A 1 means the engine was already through when the probe looked, and
    // the probe took the marker away.
    bool marked = first == 1 || fs::exists(marker);
    for (int waited = 0; !marked && waited < 300; ++waited) {
      Sleep(100);
      marked = fs::exists(marker);
    }
    LONG second = -1;
    Check(api->API_FirewallSettings(&second), "API_FirewallSettings");
    const bool kept = fs::exists(marker);
    fs::remove(marker, error);
    Say(L"   first probe -> " + std::to_wstring(first) + L"; " + marker.filename().wstring() + L" written by the engine: " +
        YesNo(marked) + L"; second probe -> " + std::to_wstring(second) + L" (nothing run, marker kept: " +
        YesNo(kept) + L")");
    const bool ok = first == 1 || (first == 0 && marked && second == 0 && kept);
    return {ok, L"the engine got through: " + YesNo(marked) + L", probes " + std::to_wstring(first) + L", " +
                    std::to_wstring(second)};
  }

  Verdict Messages() {
    int found = 0;
    const LONG codes[] = {-403, -404, -408, -423};
    for (LONG code : codes) {
      UniqueBstr title = MakeBstr(L"");
      short type = 0;
      LONG has_info = 0;
      Check(commands_->W_GetMessageInfo(code, title.addressof(), &type, &has_info), "W_GetMessageInfo");
      const std::wstring text = MessageText(code);
      found += text != L"(no text)" ? 1 : 0;
      Say(L"   " + std::to_wstring(code) + L": " + text +
          (title.view().empty() ? L"" : L"  [" + std::wstring(title.view()) + L"]"));
    }
    return {found == 4, std::to_wstring(found) + L" of 4 codes have a text; -404: \"" + MessageText(-404) + L"\""};
  }

  fs::path work_;
  fs::path vault_;
  ComPtr<_clsClient> client_;
  ComPtr<_UICommands> commands_;
  ComPtr<_TavrinEenum> browser_;
  std::vector<bool> outcomes_;
};

}  // namespace

bool RunStory(const std::wstring& work, const std::wstring& vault) {
  try {
    return Story(work, vault).Run();
  } catch (const std::exception& error) {
    Say(L"STEP setup FAILED " + Wide(error.what()));
    return false;
  }
}

}  // namespace tavrine::comdemo
