#include "com/class_table.h"

#include "TavrinEUI.h"
#include "com/com_classes.h"

namespace tavrine::com {
namespace {

const ClassEntry kClasses[] = {
    {&CLSID_UICommands, &IID__UICommands, &CreateUICommands},
    {&CLSID_TavrinEenum, &IID__TavrinEenum, &CreateTavrinEenum},
    {&CLSID_clsAPI_Interface, &IID__clsAPI_Interface, &CreateclsAPI_Interface},
    {&CLSID_clsClient, &IID__clsClient, &CreateclsClient},
    {&CLSID_CRestore, &IID__CRestore, &CreateCRestore},
    {&CLSID_CBackup, &IID__CBackup, &CreateCBackup},
};

}  // namespace

std::span<const ClassEntry> Classes() noexcept { return kClasses; }

std::ptrdiff_t FindClassByClsid(REFCLSID clsid) noexcept {
  for (std::size_t i = 0; i < std::size(kClasses); ++i)
    if (IsEqualCLSID(clsid, *kClasses[i].clsid)) return static_cast<std::ptrdiff_t>(i);
  return -1;
}

std::ptrdiff_t FindClassByIid(REFIID iid) noexcept {
  for (std::size_t i = 0; i < std::size(kClasses); ++i)
    if (IsEqualIID(iid, *kClasses[i].iid)) return static_cast<std::ptrdiff_t>(i);
  return -1;
}

}  // namespace tavrine::com
