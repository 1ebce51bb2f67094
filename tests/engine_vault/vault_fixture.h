#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "engine/cls_client.h"
#include "support/engine_harness.h"

namespace tavrine::testing {

// What one engine run left in its exchange folder.
struct VaultAnswer {
  bool has_output = false;  // DLLOutput.txt was read (else DLLOutputInfo.txt or nothing)
  long long code = 0;
  std::filesystem::path folder;  // the exchange folder
};

// The reference engine in vault mode: an install folder with the sample vault
// beside the engine (made by the engine itself), and a logged-in profile whose
// requests the library's own writer produces.
class VaultTest : public ::testing::Test {
 protected:
  VaultTest() : install_(StandardEngineInstall()) {}
  void SetUp() override;
  void TearDown() override;

  // The profile the library sends: user, password, encryption password.
  void LogIn(const std::wstring& user, const std::wstring& password, const std::wstring& key = L"");
  // A fresh exchange folder below the user folder's Temp.
  std::filesystem::path Exchange(const std::string& name);
  // Runs the engine with `code` on `folder`, waits for it to end and reads the result.
  VaultAnswer Answer(int code, const std::filesystem::path& folder);
  // Writes the 12-line request carrying `random`, runs the engine, reads the result.
  VaultAnswer Ask(int code, const std::filesystem::path& folder,
                  const std::wstring& random = L"MACHINECODEREADONLY");
  VaultAnswer Ask(int code) { return AskRandom(code, L"MACHINECODEREADONLY"); }
  VaultAnswer AskRandom(int code, const std::wstring& random) {
    return Ask(code, Exchange("H_" + std::to_string(code)), random);
  }
  // The 13-line versions request for a remote file; `versions` gets BackupVersion.txt.
  VaultAnswer AskVersions(const std::wstring& remote, std::string* versions = nullptr);
  // A restore request (restdestdir.txt, and MPC.ini unless `hosts` is empty).
  VaultAnswer Restore(const std::filesystem::path& destination, const std::wstring& parent,
                      const std::wstring& hosts = L"");

  // Appends "key = value" lines (later lines win) to a vault file.
  void AppendToVaultFile(const std::filesystem::path& relative, const std::string& lines) const;
  std::filesystem::path vault() const { return install_.path() / "vault"; }
  std::filesystem::path UserFolder() const;

  EngineInstall install_;
  engine::clsClient client_;
  int folders_ = 0;
};

}  // namespace tavrine::testing
