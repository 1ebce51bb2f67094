#pragma once
// The engine round trips of a session: session entry, silent login, random
// number renewal, listing, quota, restore, versions, delete, firewall probe.
// Each takes the session opened at the start of the call (the contract keeps
// it, as a later call of the same object may see what it left); they may throw.
#include <cstdint>
#include <optional>
#include <string>

#include "engine/session.h"

namespace tavrine::operations {

struct EntryStart {
  std::int32_t handle = -1;  // the engine's process handle, now the caller's
  bool completed = false;    // the request was written and a start tried
};
// Starts the encryption-status run in the caller's folder, not waited for.
EntryStart StartSessionEntry(engine::Session& session, const std::wstring& folder);

// The silent login (command 116) with its retries; `method` names the caller
// in trace lines. The address and port the engine answers with are kept in
// the session's connection and the profile.
std::int32_t SilentLogin(engine::Session& session, const wchar_t* method);
// The silent login as the operations use it after -504: a failure inside it
// is traced under the reconnect's name and gives -1, and the operation goes on.
std::int32_t Reconnect();

// Renews the client random number (command 5); the engine's code. A failure
// is traced and gives the code read so far.
std::int32_t RenewRandomNumber(engine::Session& session);
// The same in a session of its own, as the listing and the delete use it.
std::int32_t RenewRandomNumber();

// The listing (command 115) into the caller's folder, with its retries and the
// one failure box; -1 when cancelled or without a result.
std::int32_t ListRemote(engine::Session& session, const std::wstring& folder);

struct QuotaResult {
  std::int16_t result = -1;
  // Set when the reading got as far as Quota.txt (-1/0 when it had no lines).
  std::optional<double> max_size;
  std::optional<double> used_space;
};
QuotaResult ReadQuota(engine::Session& session);

// Restore (command 123) started, not waited for; the process handle or -1.
std::int32_t StartRestore(engine::Session& session, const std::wstring& destination,
                          const std::wstring& parent, const std::wstring& folder);

struct VersionsResult {
  std::int32_t result = -1;
  std::wstring folder;  // the exchange folder holding BackupVersion.txt
};
VersionsResult FetchVersions(engine::Session& session, const std::wstring& remote_file);

std::int32_t DeleteRemote(engine::Session& session, const std::wstring& list_file);

// Starts the firewall probe; 1 when the marker of an earlier probe was there.
// `known_address` is the server address the caller's connection holds (the
// probe keeps "localhost", and resolves the configured domain otherwise).
std::int32_t ProbeFirewall(const std::wstring& known_address);

}  // namespace tavrine::operations
