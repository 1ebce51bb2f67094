#pragma once
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool_files.h"
#include "tool_text.h"

// Text, name and file helpers of the vault mode. Text is UTF-8 inside the engine.
namespace tavrine::refengine {

using reftools::AsciiLower;
using reftools::FormatDate;
using reftools::ReadWholeFile;
using reftools::SplitLines;
using reftools::Trim;

// UTF-16LE bytes (BOM optional) to UTF-8; unpaired surrogates become U+FFFD.
std::string Utf8FromUtf16Le(std::string_view bytes);
// UTF-16LE with BOM.
std::string Utf16LeFromUtf8(std::string_view utf8);
// A text file of unknown encoding: UTF-16LE with BOM, else UTF-8 (BOM optional)
// when valid, else Windows-1252.
std::string DecodeAnyText(std::string_view bytes);

// The request's character shift undone: each character's Windows-1252 code less 2.
std::string Unshift(std::string_view utf8);
// The shift itself (for tools that write requests).
std::string Shift(std::string_view utf8);

bool SameText(std::string_view a, std::string_view b);  // ASCII case folded

// One remote name as a file name in the vault: reserved characters, '%', '='
// and a trailing dot or blank as %XX; the empty name is "%". Nothing decoded
// from a request can leave the folder it is joined to.
std::string EncodeName(std::string_view name);
std::optional<std::string> DecodeName(std::string_view encoded);
// A remote path split at '\' and '/'; nullopt when it holds "." or ".." or
// a control character. A leading separator gives an empty first name.
std::optional<std::vector<std::string>> SplitRemotePath(std::string_view path);
// A remote name as a local file name on any platform.
std::string LocalName(std::string_view name);

using SysSeconds = std::chrono::sys_seconds;
std::optional<SysSeconds> ParseDate(std::string_view text);
std::optional<SysSeconds> FileWriteTime(const std::filesystem::path& file);
void SetFileWriteTime(const std::filesystem::path& file, SysSeconds time);

std::string Sha256Hex(std::string_view bytes);
// "sha256:<salt>:<digest of salt + secret>"; the salt is random.
std::string HashSecret(std::string_view secret);
bool SecretMatches(std::string_view stored, std::string_view secret);

// Temp file beside the target, flushed, then renamed over it: a reader sees
// the old or the new bytes, never a mix.
bool WriteFileAtomically(const std::filesystem::path& file, std::string_view bytes);
// A name for a temp file or folder beside `target`, unique to this process.
std::filesystem::path TempSibling(const std::filesystem::path& target);

}  // namespace tavrine::refengine
