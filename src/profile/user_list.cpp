#include "profile/user_list.h"

#include <cwchar>
#include <fstream>
#include <map>

#include "foundation/file_system.h"
#include "foundation/text_file.h"
#include "foundation/text_util.h"
#include "platform/module_folder.h"
#include "platform/path.h"
#include "profile/safe_name.h"

namespace tavrine::profile {

namespace {

constexpr const wchar_t* kSection = L"Users";

bool StartsWithUtf16Bom(const std::wstring& file) {
  std::ifstream in(platform::ToFsPath(file), std::ios::binary);
  char bom[2] = {};
  return in.read(bom, 2) && bom[0] == '\xFF' && bom[1] == '\xFE';
}

// A file written by hand may be ANSI; ours are UTF-16.
std::vector<std::wstring> ReadLines(const std::wstring& file) {
  auto lines = StartsWithUtf16Bom(file) ? foundation::ReadUtf16Lines(file)
                                        : foundation::ReadAnsiLines(file);
  return lines.value_or(std::vector<std::wstring>{});
}

// "User<N>" with N a plain positive decimal; 0 otherwise.
unsigned long UserIndex(const std::wstring& key) {
  if (key.size() < 5 || !foundation::EqualsIgnoreCase(key.substr(0, 4), L"User")) return 0;
  unsigned long index = 0;
  for (std::size_t i = 4; i < key.size(); ++i) {
    if (key[i] < L'0' || key[i] > L'9' || index > 1000000) return 0;
    index = index * 10 + static_cast<unsigned long>(key[i] - L'0');
  }
  return index;
}

bool Contains(const std::vector<std::wstring>& users, const std::wstring& user) {
  for (const std::wstring& known : users) {
    if (SameUserName(known, user)) return true;
  }
  return false;
}

bool WriteList(const std::vector<std::wstring>& users) {
  std::vector<std::wstring> lines = {L"[" + std::wstring(kSection) + L"]",
                                     L"Count=" + std::to_wstring(users.size())};
  for (std::size_t i = 0; i < users.size(); ++i) {
    lines.push_back(L"User" + std::to_wstring(i + 1) + L"=" + users[i]);
  }
  return foundation::WriteUtf16Lines(UserListPath(), lines);
}

}  // namespace

std::wstring UserListPath() {
  return foundation::JoinPath(platform::ModuleFolder(), L"userlist.ini");
}

// Count is written for other readers; this one takes every UserN of the
// section in order of N, so a stale Count loses nobody.
std::vector<std::wstring> ReadUserList() {
  std::map<unsigned long, std::wstring> by_index;
  bool in_section = false;
  for (const std::wstring& raw : ReadLines(UserListPath())) {
    std::wstring line = foundation::Trim(raw);
    if (line.size() >= 2 && line.front() == L'[' && line.back() == L']') {
      in_section = foundation::EqualsIgnoreCase(
          foundation::Trim(std::wstring_view(line).substr(1, line.size() - 2)), kSection);
      continue;
    }
    std::size_t equals = line.find(L'=');
    if (!in_section || equals == std::wstring::npos) continue;
    unsigned long index = UserIndex(foundation::Trim(std::wstring_view(line).substr(0, equals)));
    if (index == 0) continue;
    by_index.try_emplace(index, foundation::Trim(std::wstring_view(line).substr(equals + 1)));
  }
  std::vector<std::wstring> users;
  for (auto& [index, user] : by_index) {
    if (IsSafeName(user) && !Contains(users, user)) users.push_back(std::move(user));
  }
  return users;
}

bool AddToUserList(const std::wstring& user) {
  if (!IsSafeName(user)) return false;
  std::vector<std::wstring> users = ReadUserList();
  if (Contains(users, user)) return true;
  users.push_back(user);
  return WriteList(users);
}

bool RemoveFromUserList(const std::wstring& user) {
  std::vector<std::wstring> users = ReadUserList();
  std::size_t before = users.size();
  std::erase_if(users, [&](const std::wstring& known) { return SameUserName(known, user); });
  if (users.size() == before) return true;
  return WriteList(users);
}

}  // namespace tavrine::profile
