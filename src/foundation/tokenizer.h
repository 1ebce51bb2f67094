#pragma once
#include <string>

namespace tavrine::foundation {

// Splits a text at a separator one token at a time; "a,,b" gives "a", "", "b".
class StringTokenizer {
 public:
  explicit StringTokenizer(std::wstring text = L"", std::wstring separator = L",");

  void setText(std::wstring text);
  void setSeparator(std::wstring separator) { separator_ = std::move(separator); }
  bool hasMoreTokens() const { return position_ != std::wstring::npos; }
  // The text up to the next separator; "" once the text is used up.
  std::wstring nextToken();

 private:
  std::wstring text_;
  std::wstring separator_;
  std::size_t position_ = std::wstring::npos;
};

}  // namespace tavrine::foundation
