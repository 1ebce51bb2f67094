#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace tavrine::operations {

// A manual backup of the items the user dropped on the remote view: the
// compare step (listing, then TavrinECompareList), then the upload; the
// scheduled backup is paused from Prepare until Finish, or until the backup is
// cancelled or fails (docs/schedule-protocol.md). 401 means cancelled by the
// user, -1 no result.
class ManualBackup {
 public:
  // Pauses the schedule and runs the compare in `exchange_folder`.
  std::int32_t Prepare(std::int32_t handle, const std::wstring& exchange_folder);
  // The compare step; DLLOutput1.txt's first line (1: items to upload,
  // 0: nothing new, negative: failure), 401 or the listing's failure.
  std::int32_t Compare();

  struct UploadStart {
    // 1 when the upload engine runs, 401 when cancelled, -1 when it could not be started.
    std::int32_t result = -1;
    // The engine call's completion flag, once the call was made.
    std::optional<std::int16_t> completed;
  };
  UploadStart StartUpload();
  // Lets the schedule run again.
  std::int32_t Finish();
  bool Cancelled() const;

 private:
  // Pauses a running scheduled backup and blocks new ones.
  void PauseSchedule();
  // Resumes the schedule of User() with the configuration loaded afresh.
  std::int32_t Unpause();
  std::int32_t RunCompare();
  std::wstring User() const;

  std::wstring exchange_folder_;
  std::int32_t handle_ = 0;
  std::wstring user_;
};

// The value of DLLOutput1.txt after a compare that found items to upload.
inline constexpr std::int32_t kCompareFoundItems = 1;

}  // namespace tavrine::operations
