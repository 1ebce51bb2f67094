#pragma once
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace tavrine::bench {

// A synthetic Backupfile.txt in depth-first order: drives, nested folders
// (depth 2..7), ~100 characters a line, about one name in twelve non-ASCII,
// dates spread over years so that no date text repeats often.
struct GeneratedListing {
  std::wstring text;                 // CRLF lines
  std::vector<std::wstring> folders;  // every folder path, with a trailing backslash
  std::size_t lines = 0;
};

// "MM-DD-YYYY HH:MM:SS" between 2000 and 2024 (days 1..28, valid in every month).
inline std::wstring RandomDate(std::mt19937& rng) {
  auto two = [](unsigned v) { return std::wstring(v < 10 ? L"0" : L"") + std::to_wstring(v); };
  const unsigned day = rng(), time = rng();
  return two(1 + day % 12) + L"-" + two(1 + day / 12 % 28) + L"-" +
         std::to_wstring(2000 + day / 336 % 25) + L" " + two(time % 24) + L":" + two(time / 24 % 60) +
         L":" + two(time / 1440 % 60);
}

// Each line (without its CRLF) goes to add_line; returns the folders.
template <class AddLine>
std::vector<std::wstring> GenerateLines(std::size_t entries, unsigned seed, AddLine&& add_line) {
  static const wchar_t* kWords[] = {L"Documents", L"Projects", L"Photos", L"Invoices", L"Archive",
                                    L"Reports", L"Backup", L"Music", L"Work", L"Private",
                                    L"Übersicht", L"Фотографии", L"Café", L"Ωmega"};
  std::mt19937 rng(seed);
  // Separate stream for dates, so the tree is the same whatever the dates.
  std::mt19937 date_rng(seed + 1);
  std::uniform_int_distribution<int> word(0, 13), files(5, 25), subfolders(1, 5), digit(0, 9999);
  std::vector<std::wstring> folders;
  std::size_t lines = 0;
  std::wstring line;
  const wchar_t* drives[] = {L"C:\\", L"D:\\"};
  // Depth-first folders until enough files exist.
  std::vector<std::pair<std::wstring, int>> stack;
  for (const wchar_t* drive : drives) stack.emplace_back(drive, 0);
  while (lines < entries) {
    if (stack.empty()) stack.emplace_back(L"C:\\Users\\more" + std::to_wstring(lines) + L"\\", 1);
    auto [folder, depth] = stack.back();
    stack.pop_back();
    folders.push_back(folder);
    const int count = files(rng);
    for (int f = 0; f < count && lines < entries; ++f) {
      std::wstring name = std::wstring(kWords[word(rng)]) + L"_" + std::to_wstring(digit(rng));
      while (folder.size() + name.size() < 62) name += L"_part";
      line = folder + name + L".docx/" + std::to_wstring(1 + digit(rng) % 9) + L"/" +
             std::to_wstring(digit(rng) * 1337) + L"/" + RandomDate(date_rng) + L"/U";
      add_line(line);
      ++lines;
    }
    if (depth < 6) {
      const int subs = depth < 2 ? 4 : subfolders(rng) - 1;
      for (int s = 0; s < subs; ++s)
        stack.emplace_back(folder + kWords[word(rng)] + std::to_wstring(s) + L"\\", depth + 1);
    }
  }
  return folders;
}

inline GeneratedListing GenerateListing(std::size_t entries, unsigned seed = 7) {
  GeneratedListing out;
  out.text.reserve(entries * 104);
  out.folders = GenerateLines(entries, seed, [&](const std::wstring& line) {
    out.text += line;
    out.text += L"\r\n";
  });
  out.lines = entries;
  return out;
}

}  // namespace tavrine::bench
