#include "dialogs/dialog_texts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "dialogs/login_flow.h"
#include "dialogs/session_texts.h"
#include "foundation/configuration.h"
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
  foundation::LoadedConfiguration().product_name = L"MyTavrinBackup";
  EXPECT_EQ(WithProductName(L"Tavrin and Tavrin"), L"MyTavrinBackup and MyTavrinBackup");
}

TEST_F(LanguageTables, QuotaLineAndItsTimeInEachLanguage) {
  const operations::QuotaReading reading{1181116006.0, 2147483648.0, {2026, 11, 25, 17, 42, 5, 0}};
  const platform::LocalTime same_day{2026, 11, 25, 23, 59, 0, 0}, next_day{2026, 11, 26, 0, 1, 0, 0};
  const struct {
    const char* language;
    const wchar_t* usage;
    const wchar_t* read;
    const wchar_t* read_next_day;
  } rows[] = {
      {"English", L"1.1 GB of 2.0 GB used", L"Read at 17:42", L"Read at 2026-11-25 17:42"},
      {"German", L"1,1 GB von 2,0 GB belegt", L"Gelesen um 17:42", L"Gelesen um 2026-11-25 17:42"},
      {"Spanish", L"1,1 GB de 2,0 GB usados", L"Le\u00eddo a las 17:42",
       L"Le\u00eddo a las 2026-11-25 17:42"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.language);
    Use(row.language);
    EXPECT_EQ(QuotaUsageText(reading), row.usage);
    EXPECT_EQ(QuotaReadAtText(reading, same_day), row.read);
    EXPECT_EQ(QuotaReadAtText(reading, next_day), row.read_next_day);
  }
  // Nothing read yet, or a reading without a total: no figure to show.
  EXPECT_EQ(QuotaUsageText(std::nullopt), L"-");
  EXPECT_EQ(QuotaUsageText(operations::QuotaReading{42, 0, {}}), L"-");
  EXPECT_EQ(QuotaReadAtText(std::nullopt, same_day), L"");
}

TEST(SessionTexts, SizesAndTheUsedShare) {
  const std::pair<double, const wchar_t*> sizes[] = {
      {0, L"0 bytes"},          {1023, L"1023 bytes"},   {1024, L"1.0 KB"},
      {1572864, L"1.5 MB"},     {1181116006, L"1.1 GB"}, {2147483648.0, L"2.0 GB"},
      {1649267441664.0, L"1.5 TB"}, {1125899906842624.0, L"1024.0 TB"}};
  for (const auto& [bytes, text] : sizes) EXPECT_EQ(FormatBytes(bytes), text) << bytes;
  EXPECT_EQ(FormatBytes(1181116006, L','), L"1,1 GB");

  using operations::QuotaReading;
  EXPECT_EQ(QuotaPermille(QuotaReading{1181116006.0, 2147483648.0, {}}), 550);
  EXPECT_EQ(QuotaPermille(QuotaReading{3, 2, {}}), 1000);
  EXPECT_EQ(QuotaPermille(QuotaReading{-1, 2, {}}), 0);
  EXPECT_EQ(QuotaPermille(QuotaReading{1, 0, {}}), 0);
  EXPECT_EQ(QuotaPermille(std::nullopt), 0);
}

}  // namespace
}  // namespace tavrine::dialogs
