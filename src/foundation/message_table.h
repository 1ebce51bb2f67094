#pragma once
#include <optional>
#include <string>

namespace tavrine::foundation {

struct MessageRow {
  int code;
  int text_number;  // 0: no localized text
  const wchar_t* english;
};

// The row of a result code, or nullptr when the code has no text.
const MessageRow* FindMessageRow(int code);

// The text shown for a result code: the localized text when it is not blank,
// else the built-in English one; nullopt when the code has no row.
std::optional<std::wstring> MessageText(int code);

enum class MessageTitle { kNone, kFirstCaption, kSecondCaption };
MessageTitle MessageTitleOf(int code);

// How many rows the table has (for tests that walk it).
std::size_t MessageRowCount();
const MessageRow& MessageRowAt(std::size_t index);

}  // namespace tavrine::foundation
