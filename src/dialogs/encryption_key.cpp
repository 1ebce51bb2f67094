#include "dialogs/encryption_key.h"

#include "dialogs/dialog_texts.h"
#include "foundation/configuration.h"
#include "foundation/text_util.h"
#include "platform/services.h"

namespace tavrine::dialogs {

namespace {

struct Row {
  KeyMessage key;
  int id;
  const wchar_t* english;
  unsigned style;
};

constexpr Row kRows[] = {
    {KeyMessage::kMismatch, 1400,
     L"The confirmation password and the password must be the same. Try again",
     platform::kMbIconStop},
    {KeyMessage::kEmptyKey, 1401, L"Encryption password can not be left blank.",
     platform::kMbIconStop},
    // Deliberately a plain box without icon.
    {KeyMessage::kTooLong, 1402, L"The encryption password can not exceed 255 characters.",
     platform::kMbOk},
    {KeyMessage::kTooShort, 1403, L"The encryption password must contain at least 4 characters.",
     platform::kMbIconStop},
    {KeyMessage::kKeepCopy, 1404,
     L"Keep a hard copy of the encryption key safely to backup and restore data at a later date.",
     platform::kMbIconInformation},
    {KeyMessage::kEnterPassword, 1405, L"Enter the enyrption password.", platform::kMbIconStop},
};

const Row& RowOf(KeyMessage message) {
  for (const auto& row : kRows) {
    if (row.key == message) return row;
  }
  return kRows[0];
}

void ShowKeyMessage(KeyMessage message) {
  platform::CurrentUi().ShowMessageBox(KeyMessageText(message),
                                       foundation::LoadedConfiguration().message_title,
                                       KeyMessageStyle(message));
}

}  // namespace

std::wstring KeyMessageText(KeyMessage message) {
  const Row& row = RowOf(message);
  return LocalText(row.id, row.english);
}

unsigned KeyMessageStyle(KeyMessage message) { return platform::kMbOk | RowOf(message).style; }

void EncKeyOptionPresenter::Show(KeyMessage message) { ShowKeyMessage(message); }

void EncKeyOptionPresenter::OnContinue() {
  if (view_.DefaultKeySelected()) {
    choice_ = {true, kDefaultKeyChoice};
    view_.CloseDialog();
    return;
  }
  const std::wstring key1 = view_.Key1();
  // Compared as typed: blanks count here, though they are trimmed later.
  if (key1 != view_.Key2()) {
    Show(KeyMessage::kMismatch);
    view_.ClearKeys();
    view_.FocusKey1();
    return;
  }
  const std::wstring key = foundation::Trim(key1);
  if (key.empty()) {
    Show(KeyMessage::kEmptyKey);
    view_.FocusKey1();
    return;
  }
  if (key.size() > kMaxKeyLength || key.size() < kMinKeyLength) {
    Show(key.size() > kMaxKeyLength ? KeyMessage::kTooLong : KeyMessage::kTooShort);
    view_.ClearKeys();
    view_.FocusKey1();
    return;
  }
  choice_ = {true, key};
  Show(KeyMessage::kKeepCopy);
  view_.CloseDialog();
}

void EncKeyOptionPresenter::OnClose() {
  choice_ = {false, L""};
  view_.CloseDialog();
}

void EncryptionPsdPresenter::OnContinue() {
  const std::wstring key = foundation::Trim(view_.Key());
  if (key.empty()) {
    ShowKeyMessage(KeyMessage::kEmptyKey);
    view_.ClearKey();
    view_.FocusKey();
    return;
  }
  choice_ = {true, key};
  view_.CloseDialog();
}

void EncryptionPsdPresenter::OnClose() {
  choice_ = {false, L""};
  view_.CloseDialog();
}

}  // namespace tavrine::dialogs
