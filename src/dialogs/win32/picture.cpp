#include "dialogs/win32/picture.h"

#include <shlwapi.h>

#include "foundation/file_system.h"
#include "platform/module_folder.h"

namespace tavrine::dialogs::win32 {

Picture Picture::Load(const std::wstring& file) {
  Picture result;
  if (!foundation::FileExists(file)) return result;
  platform::win32::ComPtr<IStream> stream;
  if (FAILED(SHCreateStreamOnFileEx(file.c_str(), STGM_READ | STGM_SHARE_DENY_WRITE,
                                    FILE_ATTRIBUTE_NORMAL, FALSE, nullptr, stream.put()))) {
    return result;
  }
  // The GIF reader may need COM on this thread; a host thread has it already.
  platform::win32::ComApartment apartment;
  // Size 0: the whole stream.
  if (FAILED(OleLoadPicture(stream.get(), 0, FALSE, IID_IPicture, result.picture_.put_void()))) {
    result.picture_.reset();
  }
  return result;
}

void Picture::Draw(HDC dc, const RECT& target) const {
  if (!picture_) return;
  OLE_XSIZE_HIMETRIC width = 0;
  OLE_YSIZE_HIMETRIC height = 0;
  if (FAILED(picture_->get_Width(&width)) || FAILED(picture_->get_Height(&height))) return;
  // HIMETRIC runs bottom-up: start at the picture's height and go back.
  picture_->Render(dc, target.left, target.top, target.right - target.left,
                   target.bottom - target.top, 0, height, width, -height, nullptr);
}

std::wstring ImageFile(const std::wstring& file_name) {
  return foundation::JoinPath(foundation::JoinPath(platform::ModuleFolder(), L"images"), file_name);
}

}  // namespace tavrine::dialogs::win32
