#include "browsing/file_history.h"

#include <algorithm>
#include <limits>

#include "browsing/browsing_state.h"
#include "browsing/file_time.h"
#include "browsing/remote_tree.h"
#include "engine/engine_codes.h"
#include "engine/session.h"
#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/tokenizer.h"
#include "foundation/trace_log.h"
#include "operations/remote_operations.h"

namespace tavrine::browsing {

namespace {

// A version number past this is garbage, not a reason to allocate.
constexpr std::int32_t kVersionNumberLimit = 100000;

std::int64_t WholeNumber(const std::wstring& text) {
  return LeadingFieldInteger(text, std::numeric_limits<std::int64_t>::min(),
                             std::numeric_limits<std::int64_t>::max());
}

void ConvertVersionDate(const std::wstring& text, FileTime& out) {
  DateFailure failure = ConvertListingDate(text, out);
  if (failure != DateFailure::kNone)
    foundation::TraceException(kVersionTraceClass, L"ISysTimeToFileTime", DescribeDateFailure(failure));
}

}  // namespace

void VersionHistory::Restart() {
  CurrentBrowsingState().version_count = 0;
  handed_out_ = 0;
}

std::int32_t VersionHistory::First(const std::wstring& remote_file, FileVersions& version) {
  Restart();
  engine::Session session = engine::Session::Open();
  operations::VersionsResult versions = operations::FetchVersions(session, remote_file);
  folder_ = versions.folder;
  if (versions.result == engine::EngineCode::kSuccessWithData && ReadVersionFile() == 1)
    return Next(version);
  if (!folder_.empty()) foundation::DeleteFolderTree(folder_);
  return -1;
}

std::int32_t VersionHistory::ReadVersionFile() {
  engine::Session::Open();
  const std::wstring file = foundation::JoinPath(folder_, L"BackupVersion.txt");
  if (!foundation::FileExists(file)) return -1;
  auto lines = foundation::ReadAnsiLines(file);
  if (!lines) return -1;
  std::wstring text;
  for (const std::wstring& line : *lines) text += line;
  if (!text.empty() && text[0] == L'0') return -1;

  std::vector<std::wstring> records;
  foundation::StringTokenizer tokens(text, L"|");
  while (tokens.hasMoreTokens()) {
    std::wstring record = tokens.nextToken();
    if (record.empty() || record.find_first_not_of(L"\r\n") == std::wstring::npos) break;
    records.push_back(std::move(record));
  }
  std::int32_t highest = 1;
  for (const std::wstring& record : records) {
    std::int64_t number = WholeNumber(record.substr(0, record.find(L'/')));
    if (number >= 1 && number <= kVersionNumberLimit)
      highest = std::max(highest, static_cast<std::int32_t>(number));
  }
  BrowsingState& state = CurrentBrowsingState();
  state.versions.assign(static_cast<std::size_t>(highest) + 1, std::wstring());
  for (std::wstring& record : records) {
    std::int64_t number = WholeNumber(record.substr(0, record.find(L'/')));
    if (number >= 1 && number <= kVersionNumberLimit)
      state.versions[static_cast<std::size_t>(number)] = std::move(record);
  }
  state.version_count = static_cast<std::int32_t>(records.size());
  highest_ = highest;
  position_ = highest;
  return 1;
}

std::int32_t VersionHistory::Next(FileVersions& version) {
  BrowsingState& state = CurrentBrowsingState();
  const std::int32_t count = state.version_count;
  // An empty position (a gap in the numbers) is skipped.
  while (position_ >= 1 && static_cast<std::size_t>(position_) < state.versions.size() &&
         state.versions[static_cast<std::size_t>(position_)].empty())
    --position_;
  const bool available = position_ >= 1 && static_cast<std::size_t>(position_) < state.versions.size();
  if (handed_out_ < count && handed_out_ < kMaxVersionsShown && available) {
    const std::int32_t result = count - handed_out_;
    const std::wstring& record = state.versions[static_cast<std::size_t>(position_)];
    std::wstring fields[4];
    foundation::StringTokenizer tokens(record, L"/");
    for (std::wstring& field : fields) field = tokens.nextToken();
    version.nVersion = static_cast<std::int16_t>(std::clamp<std::int64_t>(WholeNumber(fields[0]), -32768, 32767));
    ConvertVersionDate(fields[1], version.ftLastWriteTime);
    ConvertVersionDate(fields[2], version.ftCreationTime);
    version.nFileSize = WholeNumber(fields[3]);
    ++handed_out_;
    --position_;
    return result;
  }
  if (!folder_.empty() && foundation::FolderExists(folder_)) foundation::DeleteFolderTree(folder_);
  return -1;
}

}  // namespace tavrine::browsing
