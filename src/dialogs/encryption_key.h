#pragma once
#include <string>

#include "dialogs/login_flow.h"

namespace tavrine::dialogs {

enum class KeyMessage { kMismatch, kEmptyKey, kTooLong, kTooShort, kKeepCopy, kEnterPassword };

// Text and box style of an encryption-dialog message (product name as title).
std::wstring KeyMessageText(KeyMessage message);
unsigned KeyMessageStyle(KeyMessage message);

inline constexpr std::size_t kMinKeyLength = 4;
inline constexpr std::size_t kMaxKeyLength = 255;
inline constexpr const wchar_t* kDefaultKeyChoice = L"DEF";

// frmEncKeyOption as its Continue and Close handlers see it.
class EncKeyOptionView {
 public:
  virtual ~EncKeyOptionView() = default;
  virtual bool DefaultKeySelected() = 0;  // DefaultKey, else PrivateKey
  virtual std::wstring Key1() = 0;        // txtEncPsd1
  virtual std::wstring Key2() = 0;        // txtEncPsd2
  virtual void ClearKeys() = 0;
  virtual void FocusKey1() = 0;
  virtual void CloseDialog() = 0;
};

class EncKeyOptionPresenter {
 public:
  explicit EncKeyOptionPresenter(EncKeyOptionView& view) : view_(view) {}
  void OnContinue();  // Enc_Option_Next
  void OnClose();     // IDCancel
  const KeyChoice& choice() const { return choice_; }

 private:
  void Show(KeyMessage message);
  EncKeyOptionView& view_;
  KeyChoice choice_;
};

// EncryptionPsd.
class EncryptionPsdView {
 public:
  virtual ~EncryptionPsdView() = default;
  virtual std::wstring Key() = 0;  // txtEncPsd
  virtual void ClearKey() = 0;
  virtual void FocusKey() = 0;
  virtual void CloseDialog() = 0;
};

class EncryptionPsdPresenter {
 public:
  explicit EncryptionPsdPresenter(EncryptionPsdView& view) : view_(view) {}
  void OnContinue();  // IDReg
  void OnClose();     // IDCancel: no password handed back
  const KeyChoice& choice() const { return choice_; }

 private:
  EncryptionPsdView& view_;
  KeyChoice choice_;
};

}  // namespace tavrine::dialogs
