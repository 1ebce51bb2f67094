#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The files through which a manual backup pauses and resumes the scheduled
// backup of the same account (docs/schedule-protocol.md).
namespace tavrine::operations {

inline constexpr const wchar_t* kScheduleDataFile = L"scheduleData.txt";
inline constexpr const wchar_t* kSchedulerStatusFile = L"schedulerStatus.txt";
// Line 1 of schedulerStatus.txt: a pause is asked for while the file exists.
inline constexpr const wchar_t* kPauseRequest = L"PAUSE";

// <work root><ProductInstallationName><user>: the account's own folder.
// "" when the user is empty or not a safe folder name, or nothing is configured.
std::wstring ScheduleFolder(const std::wstring& user);

// The user a schedule method works for: the given one, else the current user.
std::wstring ScheduleUser(const std::wstring& given);

// Lines of scheduleData.txt / schedulerStatus.txt in the user's folder;
// nullopt when the file is missing.
std::optional<std::vector<std::wstring>> ReadScheduleData(const std::wstring& user);
std::optional<std::vector<std::wstring>> ReadSchedulerStatus(const std::wstring& user);

// Line 1 of scheduleData.txt is there and is not "0".
bool ScheduledRunActive(const std::vector<std::wstring>& schedule_data);

// Writes schedulerStatus.txt: "PAUSE", then lines 1 and 2 of scheduleData.txt.
bool WritePauseRequest(const std::wstring& user, const std::wstring& run, const std::wstring& job);
// Removes schedulerStatus.txt; true when it is gone.
bool RemovePauseRequest(const std::wstring& user);

// The controls of the scheduled backup. Each reads the configuration first;
// an empty `user` means the current user. 1 when done, 0 when there was
// nothing to do or it could not be done.
// Marks a manual upload in the profile ("UPLOAD" TRUE), which blocks new runs.
std::int32_t BlockScheduledRuns(const std::wstring& user);
// Clears the marks of a manual upload.
std::int32_t ClearManualUploadMarks(const std::wstring& user);
// Asks a running scheduled backup to pause.
std::int32_t RequestSchedulePause(const std::wstring& user);
bool ScheduledBackupRunning(const std::wstring& user);
// Clears the marks, then withdraws the pause request.
std::int32_t ResumeSchedule(const std::wstring& user);

}  // namespace tavrine::operations
