#include "foundation/tokenizer.h"

namespace tavrine::foundation {

StringTokenizer::StringTokenizer(std::wstring text, std::wstring separator)
    : separator_(std::move(separator)) {
  setText(std::move(text));
}

void StringTokenizer::setText(std::wstring text) {
  text_ = std::move(text);
  position_ = text_.empty() ? std::wstring::npos : 0;
}

std::wstring StringTokenizer::nextToken() {
  if (!hasMoreTokens()) return L"";
  std::size_t end = separator_.empty() ? std::wstring::npos : text_.find(separator_, position_);
  std::wstring token = text_.substr(position_, end == std::wstring::npos ? end : end - position_);
  position_ = end == std::wstring::npos ? end : end + separator_.size();
  return token;
}

}  // namespace tavrine::foundation
