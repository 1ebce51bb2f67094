#include "foundation/language_text.h"

#include "foundation/configuration.h"
#include "foundation/file_system.h"
#include "platform/ini_file.h"
#include "platform/module_folder.h"
#include "platform/path.h"

namespace tavrine::foundation {

std::wstring LanguageFilePath(const std::wstring& language) {
  return JoinPath(JoinPath(platform::ModuleFolder(), L"Lang"), language + L".ini");
}

std::wstring LanguageText(int number) {
  const std::wstring& language = LoadedConfiguration().language;
  if (language.empty()) return L"";
  std::wstring file = LanguageFilePath(language);
  if (!FileExists(file)) return L"";
  return platform::ReadIniString(L"Strings", std::to_wstring(number), file);
}

}  // namespace tavrine::foundation
