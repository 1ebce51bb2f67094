#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace tavrine::testing {

// A fresh folder under the system temp folder, removed with everything in it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The folder as the library's wide text, without a trailing separator.
  std::wstring wpath() const;

 private:
  std::filesystem::path path_;
};

// The folder of the running test program (where the build puts the engine too).
std::filesystem::path TestProgramFolder();

// Whole-file helpers for assertions. Reading a missing file gives ""; a
// write makes the missing folders first.
std::string ReadFileBytes(const std::filesystem::path& file);
void WriteFileBytes(const std::filesystem::path& file, const std::string& bytes);

// A local path as the service lists it: with backslashes.
std::wstring RemoteForm(const std::filesystem::path& local);

// UTF-16LE with BOM and CRLF line ends, as the request files are written.
std::string Utf16LeFile(const std::wstring& text_with_crlf);
// The text of UTF-16LE bytes, a leading BOM dropped (BMP characters only).
std::wstring Utf16LeText(std::string_view bytes);

}  // namespace tavrine::testing
