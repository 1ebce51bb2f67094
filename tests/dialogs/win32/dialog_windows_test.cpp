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
#include <mutex>
#include <thread>
#include <vector>

#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/file_system.h"
#include "foundation/settings.h"
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
              "[WebLink]\r\nForgotPwdLink=https://www.tavrine.com/forgot\r\n",
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

// EnumChildWindows callback: adds the control's text to *found when it is cut off.
// A named CALLBACK function: a lambda converts to a cdecl pointer, wrong on x86.
BOOL CALLBACK CollectCutOffText(HWND control, LPARAM found) {
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
}

// Texts of the visible labels and buttons that do not fit their control in its
// own font: a translation longer than the layout allows.
std::vector<std::wstring> CutOffTexts(HWND dialog) {
  std::vector<std::wstring> cut;
  EnumChildWindows(dialog, CollectCutOffText, reinterpret_cast<LPARAM>(&cut));
  return cut;
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
          }
          done_ = true;
        }) {}
  ~Driver() { thread_.join(); }
  // The dialog showed and the whole script ran before it ended.
  bool done() const { return found_ && done_; }

 private:
  std::atomic<bool> found_{false}, done_{false};
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
    for (const std::wstring& text : CutOffTexts(window)) {
      std::lock_guard<std::mutex> lock(cut_off_mutex_);
      cut_off_.push_back(name + L": " + text);
    }
  }
  void TearDown() override {
    EXPECT_EQ(missing_shots_.load(), 0);
    EXPECT_EQ(cut_off_, std::vector<std::wstring>{});
  }

 private:
  std::mutex cut_off_mutex_;
  std::vector<std::wstring> cut_off_;
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
    SendMessageW(GetDlgItem(proxy, IDC_Proxyenabled), BM_SETCHECK, BST_CHECKED, 0);
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
  EXPECT_EQ(label, Say(L"Username or Email Address:", L"Benutzername oder E-Mail-Adresse:",
                      L"Usuario o correo electrónico:"));
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
    Click(window, IDC_DefaultKey);
    Sleep(100);
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

TEST_P(DialogWindows, SessionWindowShowsUserServerAndQuota) {
  profile::SetCurrentUserName(L"alice");
  profile::UpdateUserProfile(L"username", L"alice");
  profile::UpdateUserProfile(L"serverip", L"127.0.0.1");
  install_.SetScenario(
      EngineScenario().On(114).Output(0).WithFile("Quota.txt", "1073741824\r\n2147483648\r\n"));
  std::wstring user, server, quota;
  Driver driver(std::wstring(kCaption) + Say(L" - Session", L" - Sitzung", L" - Sesión"), [&](HWND window) {
    user = Read(window, IDC_txtSessionUser);
    server = Read(window, IDC_txtSessionServer);
    quota = Read(window, IDC_txtSessionQuota);
    Shoot(window, L"session");
    Click(window, IDC_Cancel);
  });
  std::int32_t owner = 0;
  EXPECT_EQ(operations::UICommands().UI_Session_Command(owner), 1);
  EXPECT_TRUE(driver.done());
  EXPECT_EQ(user, L"alice");
  EXPECT_EQ(server, L"127.0.0.1");
  EXPECT_EQ(quota, L"1.00 GB / 2.00 GB");
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
