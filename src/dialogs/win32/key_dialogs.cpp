#include "dialogs/dialog_texts.h"
#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/configuration.h"

namespace tavrine::dialogs::win32 {

namespace {

constexpr std::size_t kKeyFieldLimit = 1024;  // the 255 rule is the presenter's

// Both key dialogs answer the same commands; only their continue button differs.
template <typename Presenter>
void KeyDialogCommand(Presenter& presenter, int continue_id, int id, int notification) {
  if (id == continue_id || id == IDOK) {
    presenter.OnContinue();
  } else if (id == IDC_IDCancel || id == IDCANCEL) {
    presenter.OnClose();
  } else if (id == IDC_lblHelp && notification == STN_CLICKED) {
    OpenHelpTopic(kFeaturesHelpTopic);
  }
}

}  // namespace

EncKeyOptionDialog::EncKeyOptionDialog() : DialogBase(IDD_frmEncKeyOption), presenter_(*this) {}

KeyChoice EncKeyOptionDialog::Show(HWND owner) {
  ShowModal(owner);
  return presenter_.choice();
}

int EncKeyOptionDialog::OnInit() {
  const auto& settings = foundation::LoadedConfiguration();
  SetWindowTextW(hwnd(), LocalText(caption::kEncTitle, L"Encryption key").c_str());
  SetText(IDC_lblHeading, LocalText(caption::kKeyHeading,
                                    L"Provide an encryption key to encrypt and decrypt your files and folders"));
  SetText(IDC_DefaultKey, LocalText(caption::kDefaultKey, L"&Default encryption key"));
  SetText(IDC_PrivateKey, LocalText(caption::kPrivateKey, L"Set &my own encryption key (Recommended)"));
  // The service's own product says so by name; a rebranded one says "Application".
  SetText(IDC_lblDefaultNote,
          settings.product_name == L"Tavrin"
              ? LocalText(caption::kDefaultKeyNote,
                          L"Tavrin will set an encryption key to encrypt all data backed up to your account")
              : LocalText(caption::kDefaultKeyNoteOther,
                          L"Application will set an encryption key to encrypt all data backed up to your account"));
  SetText(IDC_lblPrivateNote,
          LocalText(caption::kPrivateKeyNote,
                    L"Remember and enter this key to access your backed up data. For the safety of your "
                    L"own backup data, do not share this with anyone else."));
  SetText(IDC_lblEncPsd1, LocalText(caption::kSetKey, L"Set your encryption &key:"));
  SetText(IDC_lblEncPsd2, LocalText(caption::kConfirmKey, L"Con&firm your encryption key:"));
  SetText(IDC_Enc_Option_Next, LocalText(caption::kContinue, L"Co&ntinue"));
  SetText(IDC_IDCancel, LocalText(caption::kClose, L"&Close"));
  SetText(IDC_lblHelp, LocalText(caption::kHelp, L"Help"));
  AddLink(IDC_lblHelp);
  for (int id : {IDC_txtEncPsd1, IDC_txtEncPsd2}) {
    SendDlgItemMessageW(hwnd(), id, EM_LIMITTEXT, kKeyFieldLimit, 0);
  }
  SetChecked(IDC_PrivateKey, true);
  tips_.AddTool(Item(IDC_DefaultKey),
                LocalText(caption::kDefaultKeyTip,
                          L"Let Tavrin set the encryption key to encrypt and decrypt your files and folders"));
  hover_.Add(Item(IDC_Enc_Option_Next), L"Medium Btn1", L"Medium Btn2");
  hover_.Add(Item(IDC_IDCancel), L"Small Btn1", L"Small Btn2");
  return IDC_txtEncPsd1;
}

void EncKeyOptionDialog::OnCommand(int id, int notification) {
  KeyDialogCommand(presenter_, IDC_Enc_Option_Next, id, notification);
}

bool EncKeyOptionDialog::DefaultKeySelected() { return Checked(IDC_DefaultKey); }
std::wstring EncKeyOptionDialog::Key1() { return Text(IDC_txtEncPsd1); }
std::wstring EncKeyOptionDialog::Key2() { return Text(IDC_txtEncPsd2); }
void EncKeyOptionDialog::ClearKeys() {
  SetText(IDC_txtEncPsd1, L"");
  SetText(IDC_txtEncPsd2, L"");
}
void EncKeyOptionDialog::FocusKey1() { Focus(IDC_txtEncPsd1); }
void EncKeyOptionDialog::CloseDialog() { End(presenter_.choice().accepted ? 1 : 0); }

EncryptionPsdDialog::EncryptionPsdDialog() : DialogBase(IDD_EncryptionPsd), presenter_(*this) {}

KeyChoice EncryptionPsdDialog::Show(HWND owner) {
  ShowModal(owner);
  return presenter_.choice();
}

int EncryptionPsdDialog::OnInit() {
  SetWindowTextW(hwnd(), LocalText(caption::kEncTitle, L"Encryption key").c_str());
  SetText(IDC_lblInstruction,
          LocalText(caption::kEncInstruction,
                    L"Enter the encryption password that was set when the account was used for the first time."));
  SetText(IDC_lblEncPsd, LocalText(caption::kEncKeyLabel, L"&Encryption Key   :"));
  SetText(IDC_IDReg, LocalText(caption::kContinue, L"Co&ntinue"));
  SetText(IDC_IDCancel, LocalText(caption::kClose, L"&Close"));
  SetText(IDC_lblHelp, LocalText(caption::kHelp, L"Help"));
  AddLink(IDC_lblHelp);
  SendDlgItemMessageW(hwnd(), IDC_txtEncPsd, EM_LIMITTEXT, kKeyFieldLimit, 0);
  hover_.Add(Item(IDC_IDReg), L"Medium Btn1", L"Medium Btn2");
  hover_.Add(Item(IDC_IDCancel), L"Small Btn1", L"Small Btn2");
  return IDC_txtEncPsd;
}

void EncryptionPsdDialog::OnCommand(int id, int notification) {
  KeyDialogCommand(presenter_, IDC_IDReg, id, notification);
}

std::wstring EncryptionPsdDialog::Key() { return Text(IDC_txtEncPsd); }
void EncryptionPsdDialog::ClearKey() { SetText(IDC_txtEncPsd, L""); }
void EncryptionPsdDialog::FocusKey() { Focus(IDC_txtEncPsd); }
void EncryptionPsdDialog::CloseDialog() { End(presenter_.choice().accepted ? 1 : 0); }

}  // namespace tavrine::dialogs::win32
