// The real dialogs under Wine with a display: opened, filled and pressed with
// window messages from a driver thread, message boxes read and dismissed, and
// a PNG screenshot of each dialog in English, German and Spanish, and every
// label and button checked for text that its control cuts off.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
#include "operations/last_quota.h"
#include "operations/ui_commands.h"
#include "platform/module_folder.h"
#include "png_writer.h"
#include "profile/profile_store.h"
#include "support/engine_harness.h"
#include "support/install_folder.h"

namespace tavrine::dialogs::win32 {
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;

constexpr const wchar_t* kCaption = L"TavrinE Online Backup";

testing::EngineInstallOptions Options(const char* language) {
  return {.aliases = {L"TavrinEClsClient.exe"},
          .configuration_ini = testing::StandardConfiguration(
              "EngineTimeoutSeconds=20\r\n"
              "[WebLink]\r\nForgotPwdLink=https://www.tavrine.com/forgot\r\n"
              "FirewallLink=https://www.tavrine.com/firewall\r\n",
              language)};
}

std::wstring WindowText(HWND window) {
  wchar_t text[1024] = {};
  GetWindowTextW(window, text, 1024);
  return text;
}

// Polls for a top-level window of this process with exactly this title.
HWND WaitForWindow(const std::wstring& title, int timeout_ms = 15000) {
  for (int waited = 0; waited < timeout_ms; waited += 50) {
    if (HWND window = FindWindowW(L"#32770", title.c_str()); window && IsWindowVisible(window)) return window;
    Sleep(50);
  }
  return nullptr;
}

// Reads the open message box's text and presses OK.
std::wstring DismissBox(const std::wstring& title = kCaption) {
  HWND box = WaitForWindow(title);
  if (!box) return L"<no box>";
  std::wstring text;
  if (HWND label = GetDlgItem(box, 0xFFFF)) text = WindowText(label);
  PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
  for (int i = 0; i < 100 && IsWindow(box); ++i) Sleep(20);
  return text;
}

void Type(HWND dialog, int id, const std::wstring& text) {
  SendMessageW(GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}
std::wstring Read(HWND dialog, int id) { return WindowText(GetDlgItem(dialog, id)); }
// Posted, never sent: the click may open a modal box the driver must answer.
void Click(HWND dialog, int id) { PostMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }

// --- the keyboard ----------------------------------------------------------
// Keys are posted to the control that has the focus, as the keyboard delivers
// them, so the modal loop's dialog manager sees them first (Tab, Enter,
// Escape, access keys). Each step waits, bounded, for what the key does.

// The control with the keyboard focus on the window's thread.
HWND FocusOf(HWND window) {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info)) return nullptr;
  return info.hwndFocus;
}
int FocusedId(HWND window) { return GetDlgCtrlID(FocusOf(window)); }

void PostKey(HWND window, UINT key) {
  HWND target = FocusOf(window);
  if (!target) target = window;
  PostMessageW(target, WM_KEYDOWN, key, 1);
  PostMessageW(target, WM_KEYUP, key, 0xC0000001);
}

// The letter after the single "&" of a caption; 0 when it has none.
wchar_t AccessKeyOf(const std::wstring& caption) {
  for (std::size_t at = caption.find(L'&'); at != std::wstring::npos && at + 1 < caption.size();
       at = caption.find(L'&', at + 2)) {
    if (caption[at + 1] != L'&') return static_cast<wchar_t>(towupper(caption[at + 1]));
  }
  return 0;
}

// Alt and the access key of control `id`'s caption.
void PressAccessKey(HWND dialog, int id) {
  HWND target = FocusOf(dialog);
  PostMessageW(target ? target : dialog, WM_SYSCHAR, AccessKeyOf(Read(dialog, id)), 0x20000001);
}

// Tab; true once the focus has moved on.
bool Tab(HWND dialog) {
  HWND before = FocusOf(dialog);
  PostKey(dialog, VK_TAB);
  return testing::WaitUntil([&] { return FocusOf(dialog) != before; }, 5000);
}

// Characters typed into the focused control; true once it shows `expected`.
bool TypeKeys(HWND dialog, const std::wstring& text, const std::wstring& expected) {
  HWND target = FocusOf(dialog);
  for (wchar_t c : text) PostMessageW(target, WM_CHAR, c, 1);
  return testing::WaitUntil([&] { return WindowText(target) == expected; }, 5000);
}

bool WaitForFocus(HWND dialog, int id) {
  return testing::WaitUntil([&] { return FocusedId(dialog) == id; }, 5000);
}

// Reads the open message box's text and presses Enter on it.
std::wstring AnswerBoxWithEnter(const std::wstring& title = kCaption) {
  HWND box = WaitForWindow(title);
  if (!box) return L"<no box>";
  std::wstring text;
  if (HWND label = GetDlgItem(box, 0xFFFF)) text = WindowText(label);
  if (!testing::WaitUntil([&] { return IsChild(box, FocusOf(box)) != FALSE; }, 5000)) return L"<no focus>";
  PostKey(box, VK_RETURN);
  if (!testing::WaitUntil([&] { return !IsWindow(box); }, 5000)) return L"<still open>";
  return text;
}

// Labels of inputs and every button need an access key, and no letter may
// serve twice in one window; what is wrong, as readable lines.
std::vector<std::wstring> AccessKeyProblems(HWND dialog) {
  std::vector<std::wstring> problems;
  std::map<wchar_t, std::wstring> taken;
  for (HWND control = GetWindow(dialog, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    wchar_t kind[32] = {}, next_kind[32] = {};
    GetClassNameW(control, kind, 32);
    HWND next = GetWindow(control, GW_HWNDNEXT);
    if (next) GetClassNameW(next, next_kind, 32);
    const std::wstring text = WindowText(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    const bool button = lstrcmpiW(kind, L"Button") == 0 && (style & BS_TYPEMASK) != BS_GROUPBOX;
    const bool input_label = lstrcmpiW(kind, L"Static") == 0 && !(style & SS_NOTIFY) &&
                             (lstrcmpiW(next_kind, L"Edit") == 0 || lstrcmpiW(next_kind, L"ComboBox") == 0);
    const wchar_t key = AccessKeyOf(text);
    if ((button || input_label) && key == 0) problems.push_back(L"no access key: " + text);
    if (key == 0) continue;
    if (auto [it, fresh] = taken.emplace(key, text); !fresh) {
      problems.push_back(std::wstring(L"access key ") + key + L" twice: " + it->second + L" | " + text);
    }
  }
  return problems;
}

std::wstring ScreenshotFolder() {
  std::wstring path = L"Z:" + std::wstring(TAVRINE_SCREENSHOT_DIR);
  std::replace(path.begin(), path.end(), L'/', L'\\');
  CreateDirectoryW(path.c_str(), nullptr);
  return path;
}

// The window as the screen shows it, written as PNG; false when it could not be read.
bool Screenshot(HWND window, const std::wstring& name) {
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  Sleep(300);
  RECT rect{};
  GetWindowRect(window, &rect);
  const int width = rect.right - rect.left, height = rect.bottom - rect.top;
  if (width <= 0 || height <= 0) return false;
  WindowDc screen(nullptr);
  MemoryDc memory(screen.get());
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  UniqueBitmap bitmap(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap) return false;
  {
    SelectScope select(memory.get(), bitmap.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), rect.left, rect.top, SRCCOPY);
  }
  GdiFlush();
  const int stride = (width * 3 + 3) & ~3;
  std::vector<std::uint8_t> rgb;
  rgb.reserve(static_cast<std::size_t>(width) * height * 3);
  for (int y = 0; y < height; ++y) {
    const auto* row = static_cast<const std::uint8_t*>(bits) + static_cast<std::size_t>(y) * stride;
    for (int x = 0; x < width; ++x) rgb.insert(rgb.end(), {row[x * 3 + 2], row[x * 3 + 1], row[x * 3]});
  }
  return testing::WritePng(ScreenshotFolder() + L"\\" + name + L".png", width, height, rgb);
}

// Texts of the visible labels and buttons that do not fit their control in its
// own font: a translation longer than the layout allows.
std::vector<std::wstring> CutOffTexts(HWND dialog) {
  std::vector<std::wstring> cut;
  auto check = [](HWND control, LPARAM found) -> BOOL {
    wchar_t kind[16] = {};
    GetClassNameW(control, kind, 16);
    const bool label = lstrcmpiW(kind, L"Static") == 0, button = lstrcmpiW(kind, L"Button") == 0;
    const std::wstring text = WindowText(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    if (!(label || button) || text.empty() || !IsWindowVisible(control)) return TRUE;
    if (label && (style & SS_TYPEMASK) > SS_RIGHT) return TRUE;  // pictures, frames
    const LONG shape = style & BS_TYPEMASK;
    if (button && shape == BS_GROUPBOX) return TRUE;
    RECT room{};
    GetClientRect(control, &room);
    const bool box = button && (shape == BS_CHECKBOX || shape == BS_AUTOCHECKBOX ||
                                shape == BS_RADIOBUTTON || shape == BS_AUTORADIOBUTTON);
    // The check mark, or a push button's edges, take their share of the width.
    room.right -= box      ? GetSystemMetrics(SM_CXMENUCHECK) + 4
                  : button ? 2 * GetSystemMetrics(SM_CXEDGE)
                           : 0;
    const bool wraps = label || (style & BS_MULTILINE);
    WindowDc dc(control);
    SelectScope font(dc.get(), reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT need{0, 0, room.right, 0};
    DrawTextW(dc.get(), text.c_str(), -1, &need,
              DT_CALCRECT | (wraps ? DT_WORDBREAK : DT_SINGLELINE));
    if (need.right > room.right || need.bottom > room.bottom) {
      reinterpret_cast<std::vector<std::wstring>*>(found)->push_back(text);
    }
    return TRUE;
  };
  EnumChildWindows(dialog, check, reinterpret_cast<LPARAM>(&cut));
  return cut;
}

// A script that stopped early may leave its dialog open, perhaps under a
// message box: after a grace period both are cancelled, so that the test ends
// and reports instead of waiting forever.
void CloseIfLeftOpen(HWND window) {
  if (testing::WaitUntil([window] { return !IsWindow(window); }, 30000)) return;
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  testing::WaitUntil(
      [window, thread] {
        if (!IsWindow(window)) return true;
        EnumThreadWindows(
            thread,
            [](HWND open, LPARAM) -> BOOL {
              if (IsWindowVisible(open)) PostMessageW(open, WM_COMMAND, IDCANCEL, 0);
              return TRUE;
            },
            0);
        return false;
      },
      30000);
}

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

template <class T>
std::string Bytes(const T& value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof(value));
}

// `count` pixels of one colour in a bitmap's byte order; `alpha` adds an opaque fourth byte.
std::string Pixels(COLORREF color, int count, bool alpha) {
  std::string one{static_cast<char>(GetBValue(color)), static_cast<char>(GetGValue(color)),
                  static_cast<char>(GetRValue(color))};
  if (alpha) one += static_cast<char>(0xFF);
  std::string all;
  for (int i = 0; i < count; ++i) all += one;
  return all;
}

// One colour; a row of 40 pixels is 120 bytes, which needs no padding.
void WriteBmp(const fs::path& file, COLORREF color) {
  const int width = 40, height = 20;
  const BITMAPINFOHEADER info{sizeof(info), width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  const std::string pixels = Pixels(color, width * height, false);
  const DWORD offset = sizeof(BITMAPFILEHEADER) + sizeof(info);
  const BITMAPFILEHEADER header{0x4D42, offset + static_cast<DWORD>(pixels.size()), 0, 0, offset};
  testing::WriteFileBytes(file, Bytes(header) + Bytes(info) + pixels);
}

// A GIF of one pixel in one colour, which a dialog stretches over its area.
void WriteGif(const fs::path& file, COLORREF color) {
  // clang-format off
  const unsigned char bytes[] = {
      'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0,  // one by one pixel
      0x80, 0, 0,                                 // a table of two colours follows
      GetRValue(color), GetGValue(color), GetBValue(color), 0, 0, 0,
      0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0,            // the image, no table of its own
      2, 2, 0x44, 0x01, 0,                        // LZW: clear, colour 0, end
      0x3B};
  // clang-format on
  testing::WriteFileBytes(file, Bytes(bytes));
}

// A 16 by 16 icon of one colour, 32 bits a pixel, with an empty mask (rows of
// 16 bits padded to 32).
void WriteIcon(const fs::path& file, COLORREF color) {
  const int side = 16;
  const BITMAPINFOHEADER info{sizeof(info), side, side * 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const std::string image = Bytes(info) + Pixels(color, side * side, true) + std::string(side * 4, '\0');
  const WORD directory[] = {0, 1, 1};  // reserved, icon, one image
  const BYTE entry_size[] = {side, side, 0, 0};
  const WORD entry_bits[] = {1, 32};
  const DWORD entry_place[] = {static_cast<DWORD>(image.size()), 6 + 16};
  testing::WriteFileBytes(
      file, Bytes(directory) + Bytes(entry_size) + Bytes(entry_bits) + Bytes(entry_place) + image);
}

// The colour the screen shows at a point of the window's client area.
COLORREF ClientPixel(HWND window, POINT point) {
  RedrawWindow(window, nullptr, nullptr,
               RDW_ERASE | RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  Sleep(300);
  ClientToScreen(window, &point);
  WindowDc screen(nullptr);
  return GetPixel(screen.get(), point.x, point.y);
}

// An engine install in `language`, the language files beside it and a clean profile.
class WindowsTest : public ::testing::Test {
 protected:
  explicit WindowsTest(const char* language) : install_(Options(language)) {
    fs::create_directories(install_.path() / "Lang");
    for (const char* file : {"German.ini", "Spanish.ini"}) {
      fs::copy_file(fs::path(TAVRINE_LANG_DIR) / file, install_.path() / "Lang" / file);
    }
    foundation::CurrentSettings() = foundation::Settings{};
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

// A first login behind a proxy: the proxy is set through Advanced (the only
// way the product opens it) before the account has a profile, and the login
// carries it and saves it.
TEST_P(DialogWindows, LoginDialogChecksInputThenLogsInThroughTheProxySetBeforehand) {
  install_.SetScenario(
      EngineScenario().On(110).Output(901).On(116).Output(402).On(111).Output(403));
  LoginDialog dialog;
  std::wstring password_box, label, port, address_box;
  int tooltip_count = -1, region = ERROR;
  bool plain = false, proxy_closed = false;
  Driver driver(std::wstring(kCaption) + L" - Login", [&](HWND window) {
    label = Read(window, IDC_lblUserName);
    tooltip_count = dialog.tooltips().ToolTipCount();
    plain = !dialog.hover_buttons().HasImages(GetDlgItem(window, IDC_Login)) &&
            !dialog.HasBackgroundImage() && !dialog.HasBannerImage() &&
            !dialog.HasLinkCursorImage();
    UniqueRegion probe(CreateRectRgn(0, 0, 0, 0));
    region = GetWindowRgn(window, probe.get());
    Type(window, IDC_txtUserName, L"alice");
    Type(window, IDC_txtPassword, L"");
    Type(window, IDC_schipaddress, L"localhost");
    Shoot(window, L"login");

    Click(window, IDC_advanced);
    HWND proxy = WaitForWindow(ProxyTitle());
    if (!proxy) return;
    SendMessageW(GetDlgItem(proxy, IDC_Proxyenabled), BM_CLICK, 0, 0);
    HWND port_field = GetDlgItem(proxy, IDC_ProxyPort);
    Type(proxy, IDC_ProxyPort, L"");
    for (wchar_t key : std::wstring(L"3a1-2x8")) SendMessageW(port_field, WM_CHAR, key, 0);
    port = WindowText(port_field);
    Shoot(proxy, L"proxy");
    Click(proxy, IDC_Ok);
    address_box = DismissBox();
    Type(proxy, IDC_IPText, L"proxy.example");
    Click(proxy, IDC_Ok);
    Click(proxy, IDC_Cancel);
    proxy_closed = testing::WaitUntil([proxy] { return !IsWindow(proxy); }, 5000);

    Click(window, IDC_Login);
    password_box = DismissBox();
    Type(window, IDC_txtPassword, L"pw");
    Click(window, IDC_Login);
  });
  EXPECT_EQ(dialog.Show(nullptr), 403);
  EXPECT_TRUE(driver.done());
  EXPECT_EQ(label, Say(L"&Username or Email Address:", L"&Benutzername oder E-Mail-Adresse:",
                      L"&Usuario o correo electrónico:"));
  EXPECT_EQ(password_box,
            Say(L"Enter your password.", L"Geben Sie Ihr Kennwort ein.", L"Escriba su contraseña."));
  EXPECT_EQ(tooltip_count, 2);
  EXPECT_NE(region, ERROR);
  EXPECT_TRUE(plain);
  EXPECT_EQ(port, L"3128");
  EXPECT_EQ(address_box, Say(L"Enter the proxy address.", L"Geben Sie die Proxy-Adresse ein.",
                             L"Escriba la dirección del proxy."));
  EXPECT_TRUE(proxy_closed);
  EXPECT_EQ(profile::CurrentUserName(), L"alice");
  const auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_EQ(testing::RequestLine(runs[1], 9), L"proxy.example");
  EXPECT_EQ(testing::RequestLine(runs[1], 10), L"3128");
  EXPECT_EQ(profile::GetUserProfile(L"ProxyName"), L"proxy.example");
  EXPECT_EQ(profile::GetUserProfile(L"Proxyset"), L"1");
}

TEST_P(DialogWindows, EncKeyOptionRefusesAShortKeyThenTakesTheDefault) {
  EncKeyOptionDialog dialog;
  std::wstring box, cleared = L"?";
  Driver driver(KeyTitle(), [&](HWND window) {
    Shoot(window, L"enckeyoption");
    Type(window, IDC_txtEncPsd1, L"abc");
    Type(window, IDC_txtEncPsd2, L"abc");
    Click(window, IDC_Enc_Option_Next);
    box = DismissBox();
    cleared = Read(window, IDC_txtEncPsd1);
    // Posted clicks run in the order they were posted: no pause between them.
    Click(window, IDC_DefaultKey);
    Click(window, IDC_Enc_Option_Next);
  });
  KeyChoice choice = dialog.Show(nullptr);
  EXPECT_TRUE(driver.done());
  EXPECT_EQ(box, Say(L"The encryption password must contain at least 4 characters.",
                    L"Das Verschlüsselungskennwort muss mindestens 4 Zeichen enthalten.",
                    L"La contraseña de cifrado debe tener al menos 4 caracteres."));
  EXPECT_EQ(cleared, L"");
  EXPECT_TRUE(choice.accepted);
  EXPECT_EQ(choice.key, L"DEF");
}

TEST_P(DialogWindows, EncryptionPsdHandsBackTheTrimmedPassword) {
  EncryptionPsdDialog dialog;
  Driver driver(KeyTitle(), [&](HWND window) {
    Type(window, IDC_txtEncPsd, L"  my key ");
    Shoot(window, L"encryptionpsd");
    PostMessageW(window, WM_KEYDOWN, VK_RETURN, 0);  // Enter: the default button
    PostMessageW(GetDlgItem(window, IDC_txtEncPsd), WM_KEYDOWN, VK_RETURN, 0);
  });
  KeyChoice choice = dialog.Show(nullptr);
  EXPECT_TRUE(driver.done());
  EXPECT_TRUE(choice.accepted);
  EXPECT_EQ(choice.key, L"my key");
}

// The quota read when the window opens, then again with Refresh by its access
// key; a failed read shows its box and keeps the figures. Keys only.
TEST_P(DialogWindows, SessionWindowShowsTheQuotaAndRefreshesItFromTheKeyboard) {
  profile::SetCurrentUserName(L"alice");
  profile::UpdateUserProfile(L"username", L"alice");
  profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
  install_.SetScenario(EngineScenario()
                           .On(114).Output(0).WithFile("Quota.txt", "1073741824\r\n2147483648\r\n")
                           .Then().Output(0).WithFile("Quota.txt", "1181116006\r\n2147483648\r\n")
                           .Then().Info(-416));
  std::wstring user, server, opened, refreshed, after_failure, read_at, box;
  LRESULT opened_bar = -1, refreshed_bar = -1;
  bool refresh_done = false;
  Driver driver(std::wstring(kCaption) + Say(L" - Session", L" - Sitzung", L" - Sesión"), [&](HWND window) {
    user = Read(window, IDC_txtSessionUser);
    server = Read(window, IDC_txtSessionServer);
    opened = Read(window, IDC_txtSessionQuota);
    opened_bar = SendDlgItemMessageW(window, IDC_pbSessionQuota, PBM_GETPOS, 0, 0);
    PressAccessKey(window, IDC_cmdRefresh);
    refresh_done = testing::WaitUntil([&] { return Read(window, IDC_txtSessionQuota) != opened; }, 15000);
    refreshed = Read(window, IDC_txtSessionQuota);
    refreshed_bar = SendDlgItemMessageW(window, IDC_pbSessionQuota, PBM_GETPOS, 0, 0);
    read_at = Read(window, IDC_txtSessionQuotaTime);
    Shoot(window, L"session");
    // Refresh has the focus now: Space presses it.
    if (!WaitForFocus(window, IDC_cmdRefresh)) return;
    PostKey(window, VK_SPACE);
    box = AnswerBoxWithEnter();
    after_failure = Read(window, IDC_txtSessionQuota);
    if (!WaitForFocus(window, IDC_cmdRefresh)) return;
    PostKey(window, VK_ESCAPE);
  });
  std::int32_t owner = 0;
  EXPECT_EQ(operations::UICommands().UI_Session_Command(owner), 1);
  EXPECT_TRUE(driver.done());
  EXPECT_EQ(user, L"alice");
  EXPECT_EQ(server, L"127.0.0.1");
  EXPECT_EQ(opened, Say(L"1.0 GB of 2.0 GB used", L"1,0 GB von 2,0 GB belegt", L"1,0 GB de 2,0 GB usados"));
  EXPECT_EQ(opened_bar, 500);
  EXPECT_TRUE(refresh_done);
  EXPECT_EQ(refreshed, Say(L"1.1 GB of 2.0 GB used", L"1,1 GB von 2,0 GB belegt", L"1,1 GB de 2,0 GB usados"));
  EXPECT_EQ(refreshed_bar, 550);
  const std::wstring read_prefix = Say(L"Read at ", L"Gelesen um ", L"Leído a las ");
  EXPECT_EQ(read_at.substr(0, read_prefix.size()), read_prefix);
  EXPECT_EQ(read_at.size(), read_prefix.size() + 5) << "HH:MM";
  EXPECT_NE(box, L"<no box>");
  EXPECT_FALSE(box.empty());
  EXPECT_EQ(after_failure, refreshed);
  EXPECT_EQ(install_.Codes(), (std::vector<int>{114, 114, 114, 114, 114, 114}));
}

// Every control the login needs is reached with Tab alone, the links too; an
// access key moves to its field, Enter logs in, Enter and Space follow a link,
// and Escape after a failed login hands back the failure's code.
TEST_P(DialogWindows, LoginDialogWorksFromTheKeyboardAlone) {
  install_.SetScenario(EngineScenario().On(110).Output(901).On(116).Info(-403));
  std::mutex opened_mutex;
  std::vector<std::wstring> opened;
  ScopedShellOpener shell([&](const std::wstring& target, const std::wstring&) {
    std::lock_guard<std::mutex> lock(opened_mutex);
    opened.push_back(target);
    return std::intptr_t{42};
  });
  auto opened_count = [&] {
    std::lock_guard<std::mutex> lock(opened_mutex);
    return opened.size();
  };
  std::vector<int> tab_order;
  bool typed = false, followed = false, box_shown = false;
  std::wstring box;
  Driver driver(std::wstring(kCaption) + L" - Login", [&](HWND window) {
    if (!WaitForFocus(window, IDC_txtUserName)) return;
    do {
      tab_order.push_back(FocusedId(window));
    } while (tab_order.size() < 30 && Tab(window) && FocusedId(window) != tab_order.front());
    // Enter on one link, Space on another.
    for (const auto& [link, key] : {std::pair{IDC_picForgotPassword, VK_RETURN}, std::pair{IDC_picFirewall, VK_SPACE}}) {
      const std::size_t before = opened_count();
      for (int tabs = 0; tabs < 30 && FocusedId(window) != link && Tab(window); ++tabs) {
      }
      if (FocusedId(window) != link) return;
      if (link == IDC_picForgotPassword) Shoot(window, L"login_link_focus");
      PostKey(window, key);
      followed = testing::WaitUntil([&] { return opened_count() == before + 1; }, 5000);
      if (!followed) return;
    }
    PressAccessKey(window, IDC_lblUserName);
    typed = WaitForFocus(window, IDC_txtUserName) && TypeKeys(window, L"alice", L"alice");
    PressAccessKey(window, IDC_lblPassword);
    typed = typed && WaitForFocus(window, IDC_txtPassword) && TypeKeys(window, L"wrong", L"wrong");
    PressAccessKey(window, IDC_lblServer);
    typed = typed && WaitForFocus(window, IDC_schipaddress);
    // A field reached by its access key has its text selected: typing replaces it.
    typed = typed && TypeKeys(window, L"localhost", L"localhost");
    if (!typed) return;
    PostKey(window, VK_RETURN);
    box = AnswerBoxWithEnter();
    box_shown = true;
    // The password field has the focus again, its text selected.
    if (!WaitForFocus(window, IDC_txtPassword)) return;
    PostKey(window, VK_ESCAPE);
  });
  std::int32_t owner = 0;
  EXPECT_EQ(operations::UICommands().UI_Login_Command(owner), -403);
  EXPECT_TRUE(driver.done());
  const std::vector<int> expected_order = {
      IDC_txtUserName, IDC_txtPassword,      IDC_schipaddress,      IDC_remunamepwd,
      IDC_auto_Reconnect, IDC_Login,         IDC_Cancel,            IDC_advanced,
      IDC_picNewUserReg, IDC_picForgotPassword, IDC_picUpgrade,     IDC_picFirewall};
  EXPECT_EQ(tab_order, expected_order);
  EXPECT_TRUE(followed);
  EXPECT_EQ(opened, (std::vector<std::wstring>{
                        L"https://www.tavrine.com/forgot" + Say(L"", L"&country=DE&lang=de", L"&country=ES&lang=es"),
                        L"https://www.tavrine.com/firewall" + Say(L"", L"&country=DE&lang=de", L"&country=ES&lang=es")}));
  EXPECT_TRUE(typed);
  EXPECT_TRUE(box_shown);
  EXPECT_EQ(box, Say(L"Enter the correct Password and try again.",
                     L"Geben Sie das richtige Kennwort ein und versuchen Sie es erneut.",
                     L"Escriba la contraseña correcta e inténtelo de nuevo."));
  EXPECT_EQ(install_.Codes(), (std::vector<int>{110, 116}));
  const auto runs = install_.Journal();
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(testing::RequestLine(runs[1], 3), L"cnkeg") << "alice, shifted";
}

// The proxy dialog by keys only: its dependent fields follow their check
// boxes, and Apply writes exactly what it always wrote.
TEST_P(DialogWindows, ProxyDialogWorksFromTheKeyboardAndEnablesFieldsByTheirCheckBox) {
  std::mutex mutex;
  std::vector<std::pair<std::wstring, std::wstring>> written;
  auto written_count = [&] {
    std::lock_guard<std::mutex> lock(mutex);
    return written.size();
  };
  ProxyDialog dialog([](const std::wstring& name) { return name == L"Proxyset" ? L"0" : L""; },
                     [&](const std::wstring& name, const std::wstring& value) {
                       std::lock_guard<std::mutex> lock(mutex);
                       written.emplace_back(name, value);
                     });
  auto enabled = [](HWND window, std::initializer_list<int> ids) {
    std::vector<bool> states;
    for (int id : ids) states.push_back(IsWindowEnabled(GetDlgItem(window, id)) != FALSE);
    return states;
  };
  const std::initializer_list<int> kProxyFields = {IDC_httpopt, IDC_socksopt, IDC_IPText, IDC_ProxyPort};
  const std::initializer_list<int> kAuthFields = {IDC_sUsername, IDC_sPassword};
  std::vector<bool> at_start_proxy, at_start_auth, proxy_on, auth_on, proxy_off;
  bool steps = false;
  Driver driver(ProxyTitle(), [&](HWND window) {
    if (!WaitForFocus(window, IDC_Proxyenabled)) return;
    at_start_proxy = enabled(window, kProxyFields);
    at_start_auth = enabled(window, kAuthFields);
    // The window's thread enables them one after the other: wait for all.
    auto all = [&](std::initializer_list<int> ids, bool state) {
      return testing::WaitUntil([&] { return enabled(window, ids) == std::vector<bool>(ids.size(), state); }, 5000);
    };
    PostKey(window, VK_SPACE);  // the check box has the focus
    all(kProxyFields, true);
    proxy_on = enabled(window, kProxyFields);
    PressAccessKey(window, IDC_lblIPText);
    if (!WaitForFocus(window, IDC_IPText) || !TypeKeys(window, L"proxy.example", L"proxy.example")) return;
    PressAccessKey(window, IDC_lblProxyPort);
    if (!WaitForFocus(window, IDC_ProxyPort) || !TypeKeys(window, L"31x28", L"3128")) return;
    PressAccessKey(window, IDC_ProxyAuth);
    all(kAuthFields, true);
    auth_on = enabled(window, kAuthFields);
    PressAccessKey(window, IDC_lblsUsername);
    if (!WaitForFocus(window, IDC_sUsername) || !TypeKeys(window, L"bob", L"bob")) return;
    PressAccessKey(window, IDC_lblsPassword);
    if (!WaitForFocus(window, IDC_sPassword) || !TypeKeys(window, L"pw", L"pw")) return;
    PostKey(window, VK_RETURN);  // Apply, the default button
    if (!testing::WaitUntil([&] { return written_count() == 8; }, 5000)) return;
    PressAccessKey(window, IDC_Proxyenabled);
    all(kProxyFields, false);
    proxy_off = enabled(window, kProxyFields);
    PostKey(window, VK_RETURN);
    if (!testing::WaitUntil([&] { return written_count() == 16; }, 5000)) return;
    steps = true;
    PostKey(window, VK_ESCAPE);
  });
  dialog.Show(nullptr);
  EXPECT_TRUE(driver.done());
  EXPECT_TRUE(steps);
  EXPECT_EQ(at_start_proxy, std::vector<bool>(4, false));
  EXPECT_EQ(at_start_auth, std::vector<bool>(2, false));
  EXPECT_EQ(proxy_on, std::vector<bool>(4, true));
  EXPECT_EQ(auth_on, std::vector<bool>(2, true));
  EXPECT_EQ(proxy_off, std::vector<bool>(4, false));
  const std::vector<std::pair<std::wstring, std::wstring>> applied = {
      {L"Proxyset", L"1"},       {L"proxytypehttp", L"1"}, {L"proxytypesocks", L"0"},
      {L"ProxyName", L"proxy.example"}, {L"ProxyPort", L"3128"}, {L"ProxyAuthOn", L"1"},
      {L"ProxyUser", L"bob"},    {L"ProxyPass", L"pw"}};
  std::vector<std::pair<std::wstring, std::wstring>> twice = applied;
  twice.insert(twice.end(), applied.begin(), applied.end());
  twice[8].second = L"0";  // the second Apply, with the proxy off
  EXPECT_EQ(written, twice);
}

// A link label's click as its dialog receives it.
void ClickLink(HWND dialog, int id) {
  PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, STN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Shows a `Dialog`, clicks its link, then closes it; false when it never showed.
template <class Dialog>
bool PressLink(const std::wstring& title, int link, int close) {
  Dialog dialog;
  Driver driver(title, [link, close](HWND window) {
    ClickLink(window, link);
    Click(window, close);
  });
  dialog.Show(nullptr);
  return driver.done();
}

TEST_P(DialogWindows, HelpLinksOpenTheirTopicAndPageLinksCarryTheLanguage) {
  std::vector<std::pair<std::wstring, std::wstring>> opened;
  ScopedShellOpener shell([&opened](const std::wstring& target, const std::wstring& parameters) {
    opened.emplace_back(target, parameters);
    return std::intptr_t{42};
  });
  EXPECT_TRUE(PressLink<EncKeyOptionDialog>(KeyTitle(), IDC_lblHelp, IDC_IDCancel));
  EXPECT_TRUE(PressLink<EncryptionPsdDialog>(KeyTitle(), IDC_lblHelp, IDC_IDCancel));
  EXPECT_TRUE(PressLink<ProxyDialog>(ProxyTitle(), IDC_lblHelp, IDC_Cancel));
  EXPECT_TRUE(PressLink<LoginDialog>(std::wstring(kCaption) + L" - Login", IDC_picForgotPassword,
                                     IDC_Cancel));
  const std::wstring help_file = L"\"" + foundation::JoinPath(platform::ModuleFolder(), L"Help.chm");
  const std::vector<std::pair<std::wstring, std::wstring>> expected = {
      {L"hh.exe", help_file + L"::/A/Tavrin/Features.htm\""},
      {L"hh.exe", help_file + L"::/A/Tavrin/Features.htm\""},
      {L"hh.exe", help_file + L"::/A/Getting_Started/Proxy_Settings.htm\""},
      {L"https://www.tavrine.com/forgot" + Say(L"", L"&country=DE&lang=de", L"&country=ES&lang=es"),
       L""}};
  EXPECT_EQ(opened, expected);
}

INSTANTIATE_TEST_SUITE_P(Languages, DialogWindows, ::testing::Values("English", "German", "Spanish"));

class LoginCommand : public WindowsTest {
 protected:
  LoginCommand() : WindowsTest("English") {}
};

TEST_F(LoginCommand, ClosingTheLoginWindowByItsTitleCancelsTheLogin) {
  Driver driver(L"TavrinE Online Backup - Login", [](HWND) {
    // What a second UI_Login_Command does first.
    platform::SystemUi().CloseWindowByTitle(L"TavrinE Online Backup - Login");
  });
  std::int32_t owner = 0;
  EXPECT_EQ(operations::UICommands().UI_Login_Command(owner), -32766);
  EXPECT_TRUE(driver.done());
}

// Readable pictures are drawn; unreadable ones leave the dialog plain.
TEST_F(LoginCommand, PicturesDrawTheLoginDialogAndBrokenOnesLeaveItPlain) {
  const COLORREF kBackground = RGB(10, 120, 200), kBanner = RGB(200, 40, 40);
  const fs::path images = install_.path() / "images";
  fs::create_directories(images);
  for (const bool readable : {true, false}) {
    SCOPED_TRACE(readable);
    if (readable) {
      WriteGif(images / "login_screen_bigger.gif", kBackground);
      WriteGif(images / "Login.gif", kBanner);
      WriteIcon(images / "Hand.ico", RGB(0, 0, 0));
    } else {
      for (const char* name : {"login_screen_bigger.gif", "Login.gif", "Hand.ico"}) {
        testing::WriteFileBytes(images / name, "GIF89a but nothing after it");
      }
    }
    LoginDialog dialog;
    bool background = !readable, banner = !readable, cursor = !readable;
    COLORREF corner = CLR_INVALID, top = CLR_INVALID;
    Driver driver(L"TavrinE Online Backup - Login", [&](HWND window) {
      background = dialog.HasBackgroundImage();
      banner = dialog.HasBannerImage();
      cursor = dialog.HasLinkCursorImage();
      RECT client{}, strip{};
      GetClientRect(window, &client);
      GetWindowRect(GetDlgItem(window, IDC_picBanner), &strip);
      MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&strip), 2);
      corner = ClientPixel(window, {client.right - 4, client.bottom - 4});
      top = ClientPixel(window, {(strip.left + strip.right) / 2, (strip.top + strip.bottom) / 2});
      if (readable) Screenshot(window, L"login_pictures_en");
      Click(window, IDC_Cancel);
    });
    dialog.Show(nullptr);
    EXPECT_TRUE(driver.done());
    EXPECT_EQ(background, readable);
    EXPECT_EQ(banner, readable);
    EXPECT_EQ(cursor, readable);
    EXPECT_EQ(corner == kBackground, readable) << std::hex << corner;
    EXPECT_EQ(top == kBanner, readable) << std::hex << top;
  }
}

TEST_F(LoginCommand, HoverImagesFollowTheMouse) {
  fs::create_directories(install_.path() / "images");
  WriteBmp(install_.path() / "images" / "Connect Def.bmp", RGB(0, 0, 200));
  WriteBmp(install_.path() / "images" / "Connect Sel.bmp", RGB(0, 200, 0));
  WriteBmp(install_.path() / "images" / "Close Def.bmp", RGB(200, 0, 0));  // no "Sel": plain
  LoginDialog dialog;
  HANDLE before = nullptr, over = nullptr, after = nullptr;
  bool login_images = false, close_images = true;
  Driver driver(L"TavrinE Online Backup - Login", [&](HWND window) {
    HWND login = GetDlgItem(window, IDC_Login);
    login_images = dialog.hover_buttons().HasImages(login);
    close_images = dialog.hover_buttons().HasImages(GetDlgItem(window, IDC_Cancel));
    before = reinterpret_cast<HANDLE>(SendMessageW(login, BM_GETIMAGE, IMAGE_BITMAP, 0));
    SendMessageW(login, WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
    over = reinterpret_cast<HANDLE>(SendMessageW(login, BM_GETIMAGE, IMAGE_BITMAP, 0));
    SendMessageW(GetDlgItem(window, IDC_advanced), WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
    after = reinterpret_cast<HANDLE>(SendMessageW(login, BM_GETIMAGE, IMAGE_BITMAP, 0));
    Click(window, IDC_Cancel);
  });
  dialog.Show(nullptr);
  EXPECT_TRUE(driver.done());
  EXPECT_TRUE(login_images);
  EXPECT_FALSE(close_images);
  EXPECT_NE(before, nullptr);
  EXPECT_NE(over, before);
  EXPECT_EQ(after, before);
}

TEST(ToolTips, TextsCountAndShapeOfAToolTipWindow) {
  UniqueWindow parent(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 200, 100, nullptr, nullptr,
                                      nullptr, nullptr));
  ASSERT_TRUE(parent.get());
  HWND control = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 50, 20, parent.get(), nullptr,
                                 nullptr, nullptr);
  clsToolTip tips;
  ASSERT_TRUE(tips.Create(parent.get()));
  EXPECT_TRUE(tips.AddTool(control, L"Zwei Zeilen\r\nmit Umlaut \u00e4"));
  EXPECT_EQ(tips.ToolTipCount(), 1);
  EXPECT_EQ(tips.ToolTipText(control), L"Zwei Zeilen\r\nmit Umlaut \u00e4");
  // The shape changes on the window that exists, not only on the next Create.
  tips.SetBalloon(true);
  EXPECT_TRUE(tips.Balloon());
  EXPECT_NE(GetWindowLongPtrW(tips.ToolTipHandle(), GWL_STYLE) & TTS_BALLOON, 0);
  tips.SetBalloon(false);
  EXPECT_EQ(GetWindowLongPtrW(tips.ToolTipHandle(), GWL_STYLE) & TTS_BALLOON, 0);
  EXPECT_TRUE(tips.RemoveToolTip(control));
  EXPECT_EQ(tips.ToolTipCount(), 0);
}

}  // namespace
}  // namespace tavrine::dialogs::win32
