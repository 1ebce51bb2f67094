// Every engine round trip against a misbehaving engine: the call returns its
// defined result, says so in the trace log, and the next call with a good
// answer succeeds.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>

#include "backup/compare_harness.h"
#include "contract/tavrine_enum.h"
#include "hardening_fixture.h"
#include "contract/c_backup.h"
#include "contract/cls_api_interface.h"
#include "platform/path.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

enum class Fault { kCrashBeforeWriting, kCrashHalfway, kGarbage, kHangPastTimeout, kNoAnswer };

// In the order of Fault.
const char* const kFaultNames[] = {"crash before writing", "crash halfway through a file",
                                   "garbage output", "hang past the time-out",
                                   "exit without an answer"};

constexpr char kListing[] = "\xFF\xFE" "C\0:\0\\\0a\0/\0" "1\0/\0" "1\0/\0" "x\0/\0" "U\0\r\0\n\0";
constexpr char kVersions[] = "1/01-31-2011 13:05:09/01-30-2011 10:00:00/100|2/02-01-2011 08:00:00/01-30-2011 10:00:00/120|\r\n";

// One engine round trip: its code and good answer (with the data file a
// halfway crash cuts), the call, and what the call gives when the engine
// fails it. An unreadable code reads as 0, which some calls take as success.
struct Operation {
  const char* name;
  int code;
  long long answer;
  const char* data_file;  // nullptr: the answer is the code alone
  std::string data;
  std::function<long long()> call;
  long long good_result;
  long long fault_result;
  long long garbage_result;
};

class EngineFaults : public HardeningSession {
 protected:
  fs::path UserListing() const { return platform::ToFsPath(UserFolder()) / "Backupfile.txt"; }

  std::vector<Operation> Operations() {
    using Api = contract::clsAPI_Interface;
    return {
        {"API_GetQuota", 114, 402, "Quota.txt", "100\r\n200\r\n",
         [] {
           double max_size = 5, used = 5;
           long long result = Api().API_GetQuota(max_size, used);
           return result == 0 ? static_cast<long long>(used) : -100 + result;
         }, 100, -1, -1},
        {"API_REMOTE", 115, 0, "Backupfile.txt", {kListing, sizeof kListing - 1},
         [this] { return Api().API_REMOTE(CallerFolder(L"list")); }, 402, -1, -412},
        {"API_AutoReconnect", 116, 402, "DLLOutput1.txt", "127.0.0.1\r\n443\r\n",
         [] { return Api().API_AutoReconnect(); }, 402, 0, 0},
        {"API_UPDATE_RAND_NUM", 5, 404, nullptr, "", [] { return Api().API_UPDATE_RAND_NUM(); },
         404, 0, 0},
        {"API_GETVERSIONS", 113, 402, "BackupVersion.txt", kVersions,
         [] {
           std::wstring folder;
           return Api().API_GETVERSIONS(L"C:\\a.txt", folder);
         }, 402, 0, 0},
        {"API_DELETE_REMOTE_FILE", 6, 402, nullptr, "",
         [this] { return Api().API_DELETE_REMOTE_FILE(DeleteList()); }, 1, -1, 1},
        // The listing it loads is the user's own file; the engine only refreshes it.
        {"TavrinEInit", 122, 402, nullptr, "", [] { return contract::TavrinEenum().TavrinEInit(); },
         1, 0, 0},
    };
  }
};

// The operation's engine code answering with `fault`; nullopt: its good answer.
EngineScenario ScenarioFor(const Operation& op, std::optional<Fault> fault) {
  EngineScenario s;
  if (op.code == 122) s.On(119).Output(402);
  s.On(op.code);
  if (!fault) {
    s.Output(op.answer);
    if (op.data_file) s.WithFile(op.data_file, op.data);
    return s;
  }
  switch (*fault) {
    case Fault::kCrashBeforeWriting: s.Crash(); break;
    case Fault::kCrashHalfway:
      if (op.data_file) {
        s.Output(op.answer).CrashHalfway(op.data_file, op.data);
      } else {
        s.CrashHalfway("DLLOutput.txt", "-12009 busy\r\n");
      }
      break;
    case Fault::kGarbage: s.WithFile("DLLOutput.txt", std::string("\x01\xFF\0garbage\r\n", 11)); break;
    case Fault::kHangPastTimeout: s.Hang(); break;
    case Fault::kNoAnswer: s.Exit(0); break;
  }
  return s;
}

TEST_F(EngineFaults, EachOperationSurvivesEachFault) {
  for (const Operation& op : Operations()) {
    for (std::size_t index = 0; index < std::size(kFaultNames); ++index) {
      const auto fault = static_cast<Fault>(index);
      SCOPED_TRACE(std::string(op.name) + ": " + kFaultNames[index]);
      fs::remove(UserListing());
      install_.Restart(ScenarioFor(op, fault));
      NewTrace();
      auto started = std::chrono::steady_clock::now();
      long long result = op.call();
      auto took = std::chrono::steady_clock::now() - started;
      std::string trace = NewTrace();
      // A halfway crash leaves a good code and a cut data file: what the cut
      // file holds is used, so only "no crash, no hang" is asserted then.
      if (fault != Fault::kCrashHalfway) {
        EXPECT_EQ(result, fault == Fault::kGarbage ? op.garbage_result : op.fault_result);
        EXPECT_FALSE(trace.empty()) << "no trace line";
      }
      if (fault == Fault::kHangPastTimeout) {
        EXPECT_NE(trace.find("Engine run exceeded 1 s and was terminated"), std::string::npos);
      }
      EXPECT_LT(took, std::chrono::seconds(30));

      install_.Restart(ScenarioFor(op, std::nullopt));
      WriteFileBytes(UserListing(), std::string(kListing, sizeof kListing - 1));
      EXPECT_EQ(op.call(), op.good_result) << "the next good call";
    }
  }
}

// The compare program of a backup: same faults, its own scenario file.
TEST_F(EngineFaults, BackupCompareSurvivesEachFault) {
  InstallCompareProgram(install_.path());
  EngineScenario listing;
  listing.On(115).Output(0).WithFile("Backupfile.txt", {kListing, sizeof kListing - 1});
  install_.Restart(listing);
  std::wstring folder = CallerFolder(L"backup");
  // Each gives no result (-1).
  for (const char* scenario : {"crash\n", "result \x01\xff garbage\n", "hang\n", "exit 0\n"}) {
    SCOPED_TRACE(scenario);
    WriteFileBytes(platform::ToFsPath(folder) / "InputList.txt", "C:\\x.txt\r\n");
    WriteCompareScenario(install_.path(), scenario);
    NewTrace();
    EXPECT_EQ(contract::CBackup().W_BackupInit(0, folder), -1);
    EXPECT_FALSE(NewTrace().empty());
    contract::CBackup().W_BackupExitInstance();
    WriteCompareScenario(install_.path(), "result 1\n");
    WriteFileBytes(platform::ToFsPath(folder) / "InputList.txt", "C:\\x.txt\r\n");
    EXPECT_EQ(contract::CBackup().W_BackupInit(0, folder), 1) << "the next good call";
    contract::CBackup().W_BackupExitInstance();
  }
}

}  // namespace
}  // namespace tavrine::testing
