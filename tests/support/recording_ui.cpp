#include "support/recording_ui.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tavrine::testing {

int RecordingUi::ShowMessageBox(const std::wstring& text, const std::wstring& title,
                                unsigned style) {
  boxes_.push_back({text, title, style});
  return answer_;
}

void PrintTo(const RecordedBox& box, std::ostream* out) {
  *out << "{" << ::testing::PrintToString(box.text) << ", " << ::testing::PrintToString(box.title)
       << ", style " << box.style << "}";
}

std::vector<std::wstring> RecordingUi::box_texts() const {
  std::vector<std::wstring> texts;
  for (const RecordedBox& box : boxes_) texts.push_back(box.text);
  return texts;
}

bool RecordingUi::CloseWindowByTitle(const std::wstring& title) {
  auto it = std::find(open_windows_.begin(), open_windows_.end(), title);
  if (it == open_windows_.end()) return false;
  open_windows_.erase(it);
  closed_windows_.push_back(title);
  return true;
}

bool RecordingUi::HideWindowByTitle(const std::wstring& title) {
  if (std::find(open_windows_.begin(), open_windows_.end(), title) == open_windows_.end()) {
    return false;
  }
  hidden_windows_.push_back(title);
  return true;
}

}  // namespace tavrine::testing
