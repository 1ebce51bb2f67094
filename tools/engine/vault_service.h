#pragma once
#include <filesystem>
#include <optional>
#include <string>

namespace tavrine::refengine {

// The vault this program plays: the folder named by engine-vault.txt beside
// the program (relative to it), else a "vault" folder beside it.
std::optional<std::filesystem::path> ConfiguredVault(const std::filesystem::path& home);

// Answers one command from the vault into the exchange folder; returns the
// exit code (4 when the vault cannot be read: DLLOutputInfo.txt says why).
int AnswerFromVault(const std::filesystem::path& vault_root, const std::filesystem::path& home,
                    long long code, const std::filesystem::path& folder);

// Creates the demo and test vault in a missing or empty folder: 0, or 2 when
// the folder holds something (never overwritten), 4 when a write failed.
int MakeSampleVault(const std::filesystem::path& root);

}  // namespace tavrine::refengine
