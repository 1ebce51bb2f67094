#include "dialogs/encryption_key.h"

#include <gtest/gtest.h>

#include "foundation/configuration.h"
#include "support/install_folder.h"

namespace tavrine::dialogs {
namespace {

class FakeKeyOptionView : public EncKeyOptionView {
 public:
  bool default_key = false;
  std::wstring key1, key2;
  bool cleared = false, focused = false, closed = false;
  bool DefaultKeySelected() override { return default_key; }
  std::wstring Key1() override { return key1; }
  std::wstring Key2() override { return key2; }
  void ClearKeys() override { cleared = true; key1.clear(); key2.clear(); }
  void FocusKey1() override { focused = true; }
  void CloseDialog() override { closed = true; }
};

struct KeyRow {
  const char* name;
  bool default_key;
  std::wstring key1, key2;
  const wchar_t* box;  // nullptr: none
  unsigned style;
  bool cleared;
  bool accepted;
  std::wstring handed_back;
};

const std::wstring k256(256, L'k');
constexpr const wchar_t* kKeepCopy =
    L"Keep a hard copy of the encryption key safely to backup and restore data at a later date.";
constexpr const wchar_t* kMismatch =
    L"The confirmation password and the password must be the same. Try again";
constexpr const wchar_t* kBlank = L"Encryption password can not be left blank.";
constexpr unsigned kStop = platform::kMbIconStop, kInfo = platform::kMbIconInformation;

TEST(EncKeyOption, ContinueChecksInOrder) {
  const KeyRow rows[] = {
      {"too short", false, L"abc", L"abc",
       L"The encryption password must contain at least 4 characters.", kStop, true, false, L""},
      {"trimmed", false, L"  abcd  ", L"  abcd  ", kKeepCopy, kInfo, false, true, L"abcd"},
      {"compared before trimming", false, L"abcd", L"abcd ", kMismatch, kStop, true, false, L""},
      {"case matters", false, L"abcd", L"ABCD", kMismatch, kStop, true, false, L""},
      {"both empty", false, L"", L"", kBlank, kStop, false, false, L""},
      {"only blanks", false, L"   ", L"   ", kBlank, kStop, false, false, L""},
      {"256 after trimming", false, L" " + k256, L" " + k256,
       L"The encryption password can not exceed 255 characters.", platform::kMbOk, true, false, L""},
      {"255 is fine", false, k256.substr(1), k256.substr(1), kKeepCopy, kInfo, false, true,
       k256.substr(1)},
      {"default ignores the fields", true, L"x", L"y", nullptr, 0, false, true, L"DEF"},
  };
  testing::InstallFolder install;
  install.WriteStandardConfiguration();
  foundation::LoadConfigurations();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    install.ui() = testing::RecordingUi();
    FakeKeyOptionView view;
    view.default_key = row.default_key;
    view.key1 = row.key1;
    view.key2 = row.key2;
    EncKeyOptionPresenter presenter(view);
    presenter.OnContinue();
    using Boxes = std::vector<testing::RecordedBox>;
    const std::wstring& title = foundation::LoadedConfiguration().message_title;
    EXPECT_EQ(install.ui().boxes(), (row.box ? Boxes{{row.box, title, row.style}} : Boxes{}));
    EXPECT_EQ(view.cleared, row.cleared);
    EXPECT_EQ(view.focused, !row.accepted);
    EXPECT_EQ(view.closed, row.accepted);
    EXPECT_EQ(presenter.choice().accepted, row.accepted);
    EXPECT_EQ(presenter.choice().key, row.handed_back);
  }
}

TEST(EncKeyOption, CloseHandsBackNothing) {
  FakeKeyOptionView view;
  view.key1 = view.key2 = L"abcd";
  EncKeyOptionPresenter presenter(view);
  presenter.OnClose();
  EXPECT_TRUE(view.closed);
  EXPECT_FALSE(presenter.choice().accepted);
  EXPECT_EQ(presenter.choice().key, L"");
}

class FakePsdView : public EncryptionPsdView {
 public:
  std::wstring key;
  bool cleared = false, focused = false, closed = false;
  std::wstring Key() override { return key; }
  void ClearKey() override { cleared = true; }
  void FocusKey() override { focused = true; }
  void CloseDialog() override { closed = true; }
};

TEST(EncryptionPsd, BlankStaysOpenAndAnyTextIsHandedBackTrimmed) {
  testing::InstallFolder install;
  FakePsdView blank;
  blank.key = L"  ";
  EncryptionPsdPresenter blank_presenter(blank);
  blank_presenter.OnContinue();
  EXPECT_TRUE(blank.cleared && blank.focused);
  EXPECT_FALSE(blank.closed);
  EXPECT_EQ(install.ui().box_texts(), std::vector<std::wstring>{kBlank});

  FakePsdView given;
  given.key = L" ab ";  // no length rule here: the service decides
  EncryptionPsdPresenter presenter(given);
  presenter.OnContinue();
  EXPECT_TRUE(given.closed);
  EXPECT_TRUE(presenter.choice().accepted);
  EXPECT_EQ(presenter.choice().key, L"ab");
}

}  // namespace
}  // namespace tavrine::dialogs
