#include "dialogs/dialog_texts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "dialogs/login_flow.h"
#include "foundation/settings.h"
#include "support/install_folder.h"

namespace tavrine::dialogs {
namespace {

namespace fs = std::filesystem;

class LanguageTables : public ::testing::Test {
 protected:
  void Use(const std::string& language) {
    fs::create_directories(install_.path() / "Lang");
    for (const char* file : {"German.ini", "Spanish.ini"}) {
      fs::copy_file(fs::path(TAVRINE_LANG_DIR) / file, install_.path() / "Lang" / file,
                    fs::copy_options::overwrite_existing);
    }
    install_.WriteConfiguration(testing::StandardConfiguration("", language));
    foundation::LoadConfigurations();
  }
  testing::InstallFolder install_;
};

TEST_F(LanguageTables, TextsComeFromTheLanguageWithEnglishAsFallback) {
  struct Row {
    const char* language;
    LoginMessage message;
    const wchar_t* text;
  } rows[] = {
      {"German", LoginMessage::kPasswordMissing, L"Geben Sie Ihr Kennwort ein."},
      {"German", LoginMessage::kBadUserName, L"Geben Sie Ihren richtigen TavrinE-Benutzernamen ein."},
      {"Spanish", LoginMessage::kPasswordMissing, L"Escriba su contraseña."},
      {"Spanish", LoginMessage::kNotActivated,
       L"Active su cuenta de TavrinE con el enlace incluido en el correo electrónico. Si no lo ha "
       L"recibido, escríbanos a support@tavrine.com"},
      {"English", LoginMessage::kBadUserName, L"Enter your correct TavrinE Username."},
      {"French", LoginMessage::kMaintenance, L"Server is under maintanance"},
  };
  for (const auto& row : rows) {
    Use(row.language);
    EXPECT_EQ(LoginMessageText(row.message), row.text) << row.language;
  }
}

TEST_F(LanguageTables, LinksCarryTheLanguageParameters) {
  Use("German");
  EXPECT_EQ(LanguageLink(L"https://x/p?a=1"), L"https://x/p?a=1&country=DE&lang=de");
  Use("Spanish");
  EXPECT_EQ(LanguageLink(L"https://x/p?a=1"), L"https://x/p?a=1&country=ES&lang=es");
  Use("English");
  EXPECT_EQ(LanguageLink(L"https://x/p?a=1"), L"https://x/p?a=1");
}

TEST_F(LanguageTables, ProductNameReplacesTavrinOnce) {
  Use("English");
  foundation::CurrentSettings().product_name = L"MyTavrinBackup";
  EXPECT_EQ(WithProductName(L"Tavrin and Tavrin"), L"MyTavrinBackup and MyTavrinBackup");
}

}  // namespace
}  // namespace tavrine::dialogs
