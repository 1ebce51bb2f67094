// What the window tests share: a driver thread that works a modal dialog
// with window messages or keystrokes, message boxes, screenshots, the layout
// and access-key checks, and the fixtures with an engine install per language.
#pragma once
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "foundation/configuration.h"
#include "foundation/shared_state.h"
#include "operations/last_quota.h"
#include "profile/profile_store.h"
#include "support/engine_harness.h"
#include "support/install_folder.h"

namespace tavrine::dialogs::win32 {

inline constexpr const wchar_t* kCaption = L"TavrinE Online Backup";

// The engine under both of its names, the configuration in `language` and two page links.
testing::EngineInstallOptions Options(const char* language);

std::wstring WindowText(HWND window);

// Polls for a top-level window of this process with exactly this title.
HWND WaitForWindow(const std::wstring& title, int timeout_ms = 15000);

// Reads the open message box's text and presses OK.
std::wstring DismissBox(const std::wstring& title = kCaption);

void Type(HWND dialog, int id, const std::wstring& text);
std::wstring Read(HWND dialog, int id);
// Posted, never sent: the click may open a modal box the driver must answer.
void Click(HWND dialog, int id);

// --- the keyboard ----------------------------------------------------------
// Keys are posted to the control that has the focus, as the keyboard delivers
// them, so the modal loop's dialog manager sees them first (Tab, Enter,
// Escape, access keys). Each step waits, bounded, for what the key does.

// The control with the keyboard focus on the window's thread.
HWND FocusOf(HWND window);
int FocusedId(HWND window);

void PostKey(HWND window, UINT key);

// The letter after the single "&" of a caption; 0 when it has none.
wchar_t AccessKeyOf(const std::wstring& caption);

// Alt and the access key of control `id`'s caption.
void PressAccessKey(HWND dialog, int id);

// Tab; true once the focus has moved on.
bool Tab(HWND dialog);

// Characters typed into the focused control; true once it shows `expected`.
bool TypeKeys(HWND dialog, const std::wstring& text, const std::wstring& expected);

bool WaitForFocus(HWND dialog, int id);

// Reads the open message box's text and presses Enter on it.
std::wstring AnswerBoxWithEnter(const std::wstring& title = kCaption);

// Labels of inputs and every button need an access key, and no letter may
// serve twice in one window; what is wrong, as readable lines.
std::vector<std::wstring> AccessKeyProblems(HWND dialog);

std::wstring ScreenshotFolder();

// The window as the screen shows it, written as PNG; false when it could not be read.
bool Screenshot(HWND window, const std::wstring& name);

// Texts of the visible labels and buttons that do not fit their control in its
// own font: a translation longer than the layout allows.
std::vector<std::wstring> CutOffTexts(HWND dialog);

// A script that stopped early may leave its dialog open, perhaps under a
// message box: after a grace period both are cancelled, so that the test ends
// and reports instead of waiting forever.
void CloseIfLeftOpen(HWND window);

// Runs `drive` on its own thread with the dialog titled `title` once it shows,
// while the dialog runs modally on this one.
class Driver {
 public:
  Driver(const std::wstring& title, std::function<void(HWND)> drive)
      : thread_([this, title, drive] {
          if (HWND window = WaitForWindow(title)) {
            found_ = true;
            drive(window);
            ran_ = true;
            CloseIfLeftOpen(window);
          }
          done_ = true;
        }) {}
  ~Driver() { thread_.join(); }
  // The dialog showed and the whole script ran before it ended.
  // The driver thread may still be on its way out when the dialog has ended.
  bool done() const {
    return testing::WaitUntil([this] { return done_.load(); }, 70000) && found_ && ran_;
  }

 private:
  std::atomic<bool> found_{false}, ran_{false}, done_{false};
  std::thread thread_;
};

// An engine install in `language`, the language files beside it and a clean profile.
class WindowsTest : public ::testing::Test {
 protected:
  explicit WindowsTest(const char* language) : install_(Options(language)) {
    std::filesystem::create_directories(install_.path() / "Lang");
    for (const char* file : {"German.ini", "Spanish.ini"}) {
      std::filesystem::copy_file(std::filesystem::path(TAVRINE_LANG_DIR) / file, install_.path() / "Lang" / file);
    }
    foundation::LoadedConfiguration() = {};
    foundation::ThreadState() = {};
    operations::LastQuota().reset();
    testing::ResetProfileStore();
    foundation::LoadConfigurations();
  }
  ~WindowsTest() override { testing::ResetProfileStore(); }

  testing::EngineInstall install_;
  std::atomic<int> missing_shots_{0};
};

class DialogWindows : public WindowsTest, public ::testing::WithParamInterface<const char*> {
 protected:
  DialogWindows() : WindowsTest(GetParam()) {}
  bool German() const { return std::string(GetParam()) == "German"; }
  bool Spanish() const { return std::string(GetParam()) == "Spanish"; }
  // The text as this test's language has it.
  std::wstring Say(const wchar_t* english, const wchar_t* german, const wchar_t* spanish) const {
    return German() ? german : Spanish() ? spanish : english;
  }
  std::wstring KeyTitle() const {
    return Say(L"Encryption key", L"Verschlüsselungsschlüssel", L"Clave de cifrado");
  }
  std::wstring ProxyTitle() const {
    return Say(L"Proxy Settings", L"Proxy-Einstellungen", L"Configuración del proxy");
  }
  // A screenshot in this language for the record, and the texts the layout
  // cuts off; a screenshot that cannot be taken fails the test.
  void Shoot(HWND window, const std::wstring& name) {
    if (!Screenshot(window, name + Say(L"_en", L"_de", L"_es"))) ++missing_shots_;
    std::lock_guard<std::mutex> lock(mutex_);
    for (const std::wstring& text : CutOffTexts(window)) cut_off_.push_back(name + L": " + text);
    for (const std::wstring& text : AccessKeyProblems(window)) access_keys_.push_back(name + L": " + text);
  }
  void TearDown() override {
    EXPECT_EQ(missing_shots_.load(), 0);
    EXPECT_EQ(cut_off_, std::vector<std::wstring>{});
    EXPECT_EQ(access_keys_, std::vector<std::wstring>{});
  }

 private:
  std::mutex mutex_;
  std::vector<std::wstring> cut_off_;
  std::vector<std::wstring> access_keys_;
};

}  // namespace tavrine::dialogs::win32
