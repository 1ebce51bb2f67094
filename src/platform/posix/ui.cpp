#include "platform/ui.h"

#include <cstdio>

#include "platform/path.h"

namespace tavrine::platform {

namespace {

// No display here: the box becomes one line on stderr so that runs stay readable.
class PosixUi : public Ui {
 public:
  int ShowMessageBox(const std::wstring& text, const std::wstring& title,
                     unsigned style) override {
    std::string line = "[message box 0x" + Hex(style) + "] " + OneLine(title) + ": " + OneLine(text);
    std::fprintf(stderr, "%s\n", line.c_str());
    return -1;
  }

  bool CloseWindowByTitle(const std::wstring&) override { return false; }
  bool HideWindowByTitle(const std::wstring&) override { return false; }

  void PumpMessages() override {}

 private:
  static std::string OneLine(const std::wstring& text) {
    std::string utf8 = WideToUtf8(text);
    for (char& c : utf8) {
      if (c == '\r' || c == '\n') c = ' ';
    }
    return utf8;
  }

  static std::string Hex(unsigned value) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%X", value);
    return buffer;
  }
};

}  // namespace

Ui& SystemUi() {
  static PosixUi ui;
  return ui;
}

}  // namespace tavrine::platform
