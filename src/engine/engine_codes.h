#pragma once
// The engine's result codes the library acts on, and the sets its decisions
// use, in one place. Every other code is kept as its raw number.
#include <cstdint>
#include <initializer_list>
#include <span>

namespace tavrine::engine {

enum class EngineCode : std::int32_t {
  kNoAnswer = 0,                 // no result file, or none with a number
  kSuccessWithData = 402,
  // "Backup cancelled by the user"; also what an operation returns when the
  // engine wants a new random number and renewing it is not permitted.
  kRenewalRefused = 401,
  kAddressResolved = 1000,
  kKeyStatusEmpty = 900,
  kKeyStatusDefault = 901,
  kKeyStatusPrivate = 902,
  kUserNameUnknown = -40,
  kUserDoesNotExist = -50,
  kPasswordChangedOnSite = -400,  // the machine list's answer after a password change
  kInvalidUserName = -401,
  kPasswordChanged = -403,
  kWrongEncryptionKey = -404,
  kNetworkFailure = -405,
  kCannotGetFiles = -408,
  kEmptyFolder = -409,
  kCannotSendBackupId = -411,
  kNothingToShow = -412,
  kDatabaseError = -415,
  kNoConnection = -416,
  kRestoreCancelled = -417,
  kCryptNotSupported = -422,
  kLoginCancelledElsewhere = -424,  // the login command's answer to a login cancelled in another window
  kReinstall = -431,
  kReconnect = -504,
  kMachineNotRegistered = -505,
  kNotActivated = -506,
  kAccountCancelled = -507,
  kUserVariableError = -508,
  kMaintenance = -509,
  kCleanupInProgress = -511,
  kNotAnAddress = -512,
  kBackupRunning = -513,
  kNoLongerActive = -514,
  kProxyAuthenticationRequired = -12008,
  kProxyCredentialsRefused = -12009,
  kProxyUnreachable = -12010,
  kLoginCancelled = -32766,
};

constexpr std::int32_t Raw(EngineCode code) { return static_cast<std::int32_t>(code); }
constexpr bool operator==(std::int32_t raw, EngineCode code) { return raw == Raw(code); }

// A named set of codes.
using CodeSet = std::span<const EngineCode>;

constexpr bool IsIn(std::int32_t raw, CodeSet set) {
  for (EngineCode code : set)
    if (raw == code) return true;
  return false;
}

namespace codes {
using enum EngineCode;

// No usable connection yet (no answer counts too): the login runs again.
inline constexpr EngineCode kTransientLogin[] = {kNoAnswer,
                                                 kNoConnection,
                                                 kNetworkFailure,
                                                 kProxyAuthenticationRequired,
                                                 kProxyCredentialsRefused,
                                                 kProxyUnreachable};
// No usable connection: the quota read gives up with the connection box.
inline constexpr EngineCode kNoConnectionAtAll[] = {kNoConnection, kNetworkFailure,
                                                    kProxyAuthenticationRequired,
                                                    kProxyCredentialsRefused, kProxyUnreachable};
// The e-mail resolution's combined network test.
inline constexpr EngineCode kResolveNetwork[] = {kNoConnection,
                                                 kNetworkFailure,
                                                 kReconnect,
                                                 kProxyAuthenticationRequired,
                                                 kProxyCredentialsRefused,
                                                 kProxyUnreachable};
// After these the listing and the delete are tried again.
inline constexpr EngineCode kListingRetry[] = {
    kNoConnection,     kWrongEncryptionKey,  kRestoreCancelled,
    kPasswordChanged,  kUserVariableError,   kAccountCancelled,
    kNotActivated,     kInvalidUserName,     kNetworkFailure,
    kProxyAuthenticationRequired, kProxyCredentialsRefused, kProxyUnreachable};
// The silent login returns these at once and removes its exchange folder.
inline constexpr EngineCode kSilentLoginFailure[] = {
    kInvalidUserName, kUserNameUnknown,  kUserDoesNotExist, kCleanupInProgress,
    kNotActivated,    kAccountCancelled, kUserVariableError, kMaintenance,
    kCryptNotSupported, kPasswordChanged, kNoConnection,    kNetworkFailure,
    kProxyAuthenticationRequired, kProxyCredentialsRefused, kProxyUnreachable, kReconnect};
// The listing shows its own message-table text for these.
inline constexpr EngineCode kListingOwnText[] = {kNetworkFailure, kEmptyFolder,
                                                 kCannotSendBackupId, kCleanupInProgress};
}  // namespace codes

}  // namespace tavrine::engine
