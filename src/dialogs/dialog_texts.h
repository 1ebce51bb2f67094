#pragma once
#include <string>
#include <string_view>

namespace tavrine::dialogs {

// Every occurrence of "Tavrin" replaced by the configured product name
// (one pass: a product name that contains "Tavrin" is not replaced again).
std::wstring WithProductName(std::wstring_view text);

// The language table's text for `id`; the English text when that entry is
// blank; then "Tavrin" replaced by the product name.
std::wstring LocalText(int id, std::wstring_view english);

// "&country=DE&lang=de" for German, "&country=ES&lang=es" for Spanish, else "".
std::wstring LanguageLinkSuffix(const std::wstring& language);
// A configured page address with the language's parameters appended.
std::wstring LanguageLink(const std::wstring& address);

// Help topics inside the product's help file.
inline constexpr const wchar_t* kProxyHelpTopic = L"Help.chm::/A/Getting_Started/Proxy_Settings.htm";
inline constexpr const wchar_t* kFeaturesHelpTopic = L"Help.chm::/A/Tavrin/Features.htm";

// Text numbers of the captions in the language tables (our own numbering).
namespace caption {
inline constexpr int kUserNameLabel = 1501;
inline constexpr int kPasswordLabel = 1502;
inline constexpr int kServerLabel = 1503;
inline constexpr int kRemember = 1504;
inline constexpr int kAutoReconnect = 1505;
inline constexpr int kRememberTip = 1506;
inline constexpr int kAutoReconnectTip = 1507;
inline constexpr int kNewUser = 1508;
inline constexpr int kForgotPassword = 1509;
inline constexpr int kUpgrade = 1510;
inline constexpr int kFirewall = 1511;
inline constexpr int kLogin = 1512;
inline constexpr int kCancel = 1513;
inline constexpr int kAdvanced = 1514;
inline constexpr int kLoginTitle = 1515;
// Encryption dialogs.
inline constexpr int kEncTitle = 1520;
inline constexpr int kDefaultKey = 1521;
inline constexpr int kPrivateKey = 1522;
inline constexpr int kSetKey = 1523;
inline constexpr int kConfirmKey = 1524;
inline constexpr int kContinue = 1525;
inline constexpr int kClose = 1526;
inline constexpr int kHelp = 1527;
inline constexpr int kDefaultKeyNote = 1528;
inline constexpr int kDefaultKeyNoteOther = 1529;
inline constexpr int kPrivateKeyNote = 1530;
inline constexpr int kKeyHeading = 1531;
inline constexpr int kDefaultKeyTip = 1532;
inline constexpr int kEncKeyLabel = 1533;
inline constexpr int kEncInstruction = 1534;
// Proxy dialog.
inline constexpr int kProxyTitle = 1540;
inline constexpr int kProxyEnabled = 1541;
inline constexpr int kProxyNote = 1542;
inline constexpr int kHttpOption = 1543;
inline constexpr int kSocksOption = 1544;
inline constexpr int kProxyAddress = 1545;
inline constexpr int kProxyPortLabel = 1546;
inline constexpr int kGetIeSettings = 1547;
inline constexpr int kProxyAuth = 1548;
inline constexpr int kProxyUser = 1549;
inline constexpr int kProxyPassword = 1550;
inline constexpr int kApply = 1551;
inline constexpr int kReset = 1552;
inline constexpr int kProxyAddressTip = 1553;
inline constexpr int kProxyUserTip = 1554;
inline constexpr int kProxyPasswordTip = 1555;
inline constexpr int kProxyIntro = 1556;
inline constexpr int kProxyCredentials = 1558;
// Session window.
inline constexpr int kSessionTitle = 1570;
inline constexpr int kSessionUser = 1571;
inline constexpr int kSessionServer = 1572;
inline constexpr int kSessionQuota = 1573;
inline constexpr int kSessionRefresh = 1574;
inline constexpr int kSessionQuotaUsed = 1575;  // "%1 of %2 used"
inline constexpr int kSessionQuotaRead = 1576;  // "Read at %1"
}  // namespace caption

}  // namespace tavrine::dialogs
