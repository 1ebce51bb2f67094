#pragma once
#include <ostream>
#include <string>
#include <vector>

#include "platform/ui.h"

namespace tavrine::testing {

struct RecordedBox {
  std::wstring text;
  std::wstring title;
  unsigned style = 0;
  bool operator==(const RecordedBox&) const = default;
};
void PrintTo(const RecordedBox& box, std::ostream* out);

// Records message boxes and window-close requests; answers boxes with `answer`.
class RecordingUi : public platform::Ui {
 public:
  int ShowMessageBox(const std::wstring& text, const std::wstring& title,
                     unsigned style) override;
  bool CloseWindowByTitle(const std::wstring& title) override;
  bool HideWindowByTitle(const std::wstring& title) override;
  void PumpMessages() override { ++pumps_; }

  void set_answer(int answer) { answer_ = answer; }
  void set_open_windows(std::vector<std::wstring> titles) { open_windows_ = std::move(titles); }
  const std::vector<RecordedBox>& boxes() const { return boxes_; }
  std::vector<std::wstring> box_texts() const;
  const std::vector<std::wstring>& closed_windows() const { return closed_windows_; }
  const std::vector<std::wstring>& hidden_windows() const { return hidden_windows_; }
  int pumps() const { return pumps_; }

 private:
  int answer_ = 1;
  int pumps_ = 0;
  std::vector<RecordedBox> boxes_;
  std::vector<std::wstring> open_windows_;
  std::vector<std::wstring> closed_windows_;
  std::vector<std::wstring> hidden_windows_;
};

}  // namespace tavrine::testing
