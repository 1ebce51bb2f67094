// The real dialogs under Wine with a display: opened, filled and pressed with
// window messages from a driver thread, message boxes read and dismissed, and
// a PNG screenshot of each dialog in English, German and Spanish, and every
// label and button checked for text that its control cuts off.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/file_system.h"
#include "contract/ui_commands.h"
#include "platform/module_folder.h"
#include "profile/profile_store.h"
#include "window_driver.h"

namespace tavrine::dialogs::win32 {
namespace {

namespace fs = std::filesystem;
using testing::EngineScenario;

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
  EXPECT_EQ(contract::UICommands().UI_Login_Command(owner), -32766);
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
