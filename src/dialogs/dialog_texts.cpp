#include "dialogs/dialog_texts.h"

#include "foundation/configuration.h"
#include "foundation/language_text.h"
#include "foundation/text_util.h"

namespace tavrine::dialogs {

std::wstring WithProductName(std::wstring_view text) {
  static constexpr std::wstring_view kWord = L"Tavrin";
  const std::wstring& product = foundation::LoadedConfiguration().product_name;
  std::wstring result;
  std::size_t start = 0;
  for (std::size_t at = text.find(kWord); at != std::wstring_view::npos;
       at = text.find(kWord, start)) {
    result.append(text.substr(start, at - start));
    result += product.empty() ? std::wstring(kWord) : product;
    start = at + kWord.size();
  }
  result.append(text.substr(start));
  return result;
}

std::wstring LocalText(int id, std::wstring_view english) {
  std::wstring text = foundation::LanguageText(id);
  if (foundation::Trim(text).empty()) text = std::wstring(english);
  return WithProductName(text);
}

std::wstring LanguageLinkSuffix(const std::wstring& language) {
  if (foundation::EqualsIgnoreCase(language, L"German")) return L"&country=DE&lang=de";
  if (foundation::EqualsIgnoreCase(language, L"Spanish")) return L"&country=ES&lang=es";
  return L"";
}

std::wstring LanguageLink(const std::wstring& address) {
  return address + LanguageLinkSuffix(foundation::LoadedConfiguration().language);
}

}  // namespace tavrine::dialogs
