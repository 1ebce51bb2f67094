// Every operation whose engine leaves no result: the call returns its defined
// result, says so in the trace log, and the next call with a good answer
// succeeds. How each kind of fault ends a round trip (crash, garbage, no
// answer, hang past the time-out) is the engine call's test; a result file
// cut halfway is the parsers' fuzz targets'.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "contract/tavrine_enum.h"
#include "contract/cls_api_interface.h"
#include "platform/path.h"
#include "session_fixture.h"

namespace tavrine::testing {
namespace {

namespace fs = std::filesystem;

constexpr char kListing[] = "\xFF\xFE" "C\0:\0\\\0a\0/\0" "1\0/\0" "1\0/\0" "x\0/\0" "U\0\r\0\n\0";
constexpr const char* kNoCode = "ReadDLLOutputFile :: no result code from the engine in ";
constexpr char kVersions[] = "1/01-31-2011 13:05:09/01-30-2011 10:00:00/100|2/02-01-2011 08:00:00/01-30-2011 10:00:00/120|\r\n";

// One engine round trip: its code and good answer (with its data file), the
// call, what it gives, and the trace line it leaves when the engine crashes
// before writing anything.
struct Operation {
  const char* name;
  int code;
  long long answer;
  const char* data_file;  // nullptr: the answer is the code alone
  std::string data;
  std::function<long long()> call;
  long long good_result;
  long long no_result;
  const char* trace;
};

class EngineFaults : public SessionTest {
 protected:
  // Trace log bytes written since the last call.
  std::string NewTrace() {
    std::string all = TraceText();
    std::string fresh = all.size() > trace_seen_ ? all.substr(trace_seen_) : std::string();
    trace_seen_ = all.size();
    return fresh;
  }
  fs::path UserListing() const { return platform::ToFsPath(UserFolder()) / "Backupfile.txt"; }

  std::vector<Operation> Operations() {
    using Api = contract::clsAPI_Interface;
    return {
        {"API_GetQuota", 114, 402, "Quota.txt", "100\r\n200\r\n",
         [] {
           double max_size = 5, used = 5;
           long long result = Api().API_GetQuota(max_size, used);
           return result == 0 ? static_cast<long long>(used) : -100 + result;
         }, 100, -1, kNoCode},
        {"API_REMOTE", 115, 0, "Backupfile.txt", {kListing, sizeof kListing - 1},
         [this] { return Api().API_REMOTE(CallerFolder(L"list")); }, 402, -1,
         "API_REMOTE :: the engine left no result"},
        {"API_AutoReconnect", 116, 402, "DLLOutput1.txt", "127.0.0.1\r\n443\r\n",
         [] { return Api().API_AutoReconnect(); }, 402, 0, kNoCode},
        {"API_UPDATE_RAND_NUM", 5, 404, nullptr, "", [] { return Api().API_UPDATE_RAND_NUM(); },
         404, 0, kNoCode},
        {"API_GETVERSIONS", 113, 402, "BackupVersion.txt", kVersions,
         [] {
           std::wstring folder;
           return Api().API_GETVERSIONS(L"C:\\a.txt", folder);
         }, 402, 0, kNoCode},
        {"API_DELETE_REMOTE_FILE", 6, 402, nullptr, "",
         [this] { return Api().API_DELETE_REMOTE_FILE(DeleteList()); }, 1, -1,
         "API_DELETE_REMOTE_FILE :: the engine left no result"},
        // The listing it loads is the user's own file; the engine only refreshes it.
        {"TavrinEInit", 122, 402, nullptr, "", [] { return contract::TavrinEenum().TavrinEInit(); },
         1, 0, kNoCode},
    };
  }

  std::size_t trace_seen_ = 0;
};

// The operation's engine code crashing before it writes anything, or its good answer.
EngineScenario ScenarioFor(const Operation& op, bool good) {
  EngineScenario s;
  if (op.code == 122) s.On(119).Output(402);
  s.On(op.code);
  if (!good) return s.Crash();
  s.Output(op.answer);
  if (op.data_file) s.WithFile(op.data_file, op.data);
  return s;
}

TEST_F(EngineFaults, EachOperationWithoutAResult) {
  for (const Operation& op : Operations()) {
    SCOPED_TRACE(op.name);
    fs::remove(UserListing());
    install_.Restart(ScenarioFor(op, false));
    NewTrace();
    EXPECT_EQ(op.call(), op.no_result);
    EXPECT_NE(NewTrace().find(op.trace), std::string::npos) << op.trace;

    install_.Restart(ScenarioFor(op, true));
    WriteFileBytes(UserListing(), std::string(kListing, sizeof kListing - 1));
    EXPECT_EQ(op.call(), op.good_result) << "the next good call";
  }
}

}  // namespace
}  // namespace tavrine::testing
