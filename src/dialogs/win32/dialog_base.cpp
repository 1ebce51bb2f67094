#include "dialogs/win32/dialog_base.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>

#include "dialogs/win32/resource.h"
#include "foundation/file_system.h"
#include "foundation/trace_log.h"
#include "platform/module_folder.h"

namespace tavrine::dialogs::win32 {

namespace {

constexpr int kCornerEllipse = 10;
constexpr COLORREF kLinkColor = RGB(0, 0, 204);

// One activation context for the life of the process.
HANDLE DialogsActivationContext() {
  static HANDLE context = [] {
    ACTCTXW request{};
    request.cbSize = sizeof(request);
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.hModule = ResourceModule();
    request.lpResourceName = MAKEINTRESOURCEW(IDR_DIALOGS_MANIFEST);
    return CreateActCtxW(&request);
  }();
  return context;
}

UniqueBitmap LoadImageFile(const std::wstring& name) {
  std::wstring file = ImageFile(name + L".bmp");
  if (!foundation::FileExists(file)) return UniqueBitmap();
  return UniqueBitmap(static_cast<HBITMAP>(
      LoadImageW(nullptr, file.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE)));
}

UniqueIcon LoadIconFile(const std::wstring& name) {
  std::wstring file = ImageFile(name);
  if (!foundation::FileExists(file)) return UniqueIcon();
  return UniqueIcon(
      static_cast<HICON>(LoadImageW(nullptr, file.c_str(), IMAGE_ICON, 0, 0, LR_LOADFROMFILE)));
}

// Labels, check boxes and option buttons; edits and lists keep their own colours.
bool SeesThrough(HWND control) {
  wchar_t name[16] = {};
  GetClassNameW(control, name, 16);
  return lstrcmpiW(name, L"Static") == 0 || lstrcmpiW(name, L"Button") == 0;
}

}  // namespace

HINSTANCE ResourceModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ResourceModule), &module);
  return module;
}

VisualStylesScope::VisualStylesScope() {
  HANDLE context = DialogsActivationContext();
  if (context != INVALID_HANDLE_VALUE) active_ = ActivateActCtx(context, &cookie_) != FALSE;
  INITCOMMONCONTROLSEX init{sizeof(init), ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&init);
}

VisualStylesScope::~VisualStylesScope() {
  if (active_) DeactivateActCtx(0, cookie_);
}

// --- hover images ----------------------------------------------------------

HoverButtons::~HoverButtons() {
  for (auto& entry : entries_) {
    if (IsWindow(entry->button)) RemoveWindowSubclass(entry->button, SubclassProc, 0);
  }
}

void HoverButtons::Add(HWND button, const std::wstring& def_name, const std::wstring& sel_name) {
  auto entry = std::make_unique<Entry>();
  entry->button = button;
  entry->def = LoadImageFile(def_name);
  entry->sel = LoadImageFile(sel_name);
  if (!entry->def || !entry->sel) {
    // A missing image leaves the plain button with its caption.
    entry->def.reset();
    entry->sel.reset();
  } else {
    SetWindowLongPtrW(button, GWL_STYLE, GetWindowLongPtrW(button, GWL_STYLE) | BS_BITMAP);
    SendMessageW(button, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(entry->def.get()));
  }
  SetWindowSubclass(button, SubclassProc, 0, reinterpret_cast<DWORD_PTR>(this));
  entries_.push_back(std::move(entry));
}

HoverButtons::Entry* HoverButtons::Find(HWND button) {
  for (auto& entry : entries_) {
    if (entry->button == button) return entry.get();
  }
  return nullptr;
}

bool HoverButtons::HasImages(HWND button) const {
  for (const auto& entry : entries_) {
    if (entry->button == button) return static_cast<bool>(entry->def);
  }
  return false;
}

void HoverButtons::Hover(HWND button) {
  for (auto& entry : entries_) {
    if (!entry->def) continue;
    HBITMAP image = entry->button == button ? entry->sel.get() : entry->def.get();
    if (reinterpret_cast<HBITMAP>(SendMessageW(entry->button, BM_GETIMAGE, IMAGE_BITMAP, 0)) != image) {
      SendMessageW(entry->button, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(image));
    }
  }
}

void HoverButtons::Leave(HWND button) {
  if (Entry* entry = Find(button); entry && entry->def) {
    SendMessageW(button, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(entry->def.get()));
  }
}

LRESULT CALLBACK HoverButtons::SubclassProc(HWND button, UINT message, WPARAM wparam, LPARAM lparam,
                                            UINT_PTR, DWORD_PTR data) {
  auto* self = reinterpret_cast<HoverButtons*>(data);
  if (message == WM_MOUSEMOVE) {
    TRACKMOUSEEVENT track{sizeof(track), TME_LEAVE, button, 0};
    TrackMouseEvent(&track);
    self->Hover(button);
  } else if (message == WM_MOUSELEAVE) {
    self->Leave(button);
  }
  return DefSubclassProc(button, message, wparam, lparam);
}

// --- dialogs ---------------------------------------------------------------

INT_PTR DialogBase::ShowModal(HWND owner) {
  VisualStylesScope styles;
  return DialogBoxParamW(ResourceModule(), MAKEINTRESOURCEW(template_id_), owner, Proc,
                         reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK DialogBase::Proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  DialogBase* self = nullptr;
  if (message == WM_INITDIALOG) {
    self = reinterpret_cast<DialogBase*>(lparam);
    SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(self));
    self->hwnd_ = window;
  } else {
    self = reinterpret_cast<DialogBase*>(GetWindowLongPtrW(window, DWLP_USER));
  }
  if (!self) return FALSE;
  try {
    return self->Handle(message, wparam, lparam);
  } catch (...) {
    // No exception may cross the window procedure.
    foundation::TraceException(L"DialogProc", foundation::DescribeCurrentException());
    return FALSE;
  }
}

INT_PTR DialogBase::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  if (auto handled = OnMessage(message, wparam, lparam)) return *handled;
  switch (message) {
    case WM_INITDIALOG:
    {
      tips_.Create(hwnd_);
      link_cursor_ = LoadIconFile(L"Hand.ico");
      int focus = OnInit();
      ApplyRoundedRegion();
      if (focus == 0) return TRUE;
      SetFocus(Item(focus));
      return FALSE;
    }
    case WM_COMMAND:
      OnCommand(LOWORD(wparam), HIWORD(wparam));
      return TRUE;
    case WM_ERASEBKGND: {
      if (!background_) return FALSE;
      RECT client{};
      GetClientRect(hwnd_, &client);
      background_.Draw(reinterpret_cast<HDC>(wparam), client);
      SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, TRUE);
      return TRUE;
    }
    case WM_CTLCOLORSTATIC:
      return StaticColors(reinterpret_cast<HDC>(wparam), reinterpret_cast<HWND>(lparam));
    case WM_SETCURSOR: {
      if (!IsLink(GetDlgCtrlID(reinterpret_cast<HWND>(wparam)))) return FALSE;
      SetCursor(link_cursor_ ? static_cast<HCURSOR>(link_cursor_.get())
                             : LoadCursorW(nullptr, IDC_HAND));
      SetWindowLongPtrW(hwnd_, DWLP_MSGRESULT, TRUE);
      return TRUE;
    }
    default:
      return FALSE;
  }
}

void DialogBase::AddLink(int id) {
  links_.push_back(id);
  HWND link = Item(id);
  SetWindowLongPtrW(link, GWL_STYLE, GetWindowLongPtrW(link, GWL_STYLE) | WS_TABSTOP);
  SetWindowSubclass(link, LinkKeys, 0, 0);
}

namespace {

bool IsFollowKey(WPARAM key) { return key == VK_RETURN || key == VK_SPACE; }

// A dotted frame in the link's colour around its text while it has the
// focus. Drawn, not XORed: the link repaints under it every time, and Wine's
// XOR focus frame does not show.
void DrawLinkFocus(HWND link) {
  const int length = GetWindowTextLengthW(link);
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  GetWindowTextW(link, text.data(), length + 1);
  WindowDc dc(link);
  SelectScope font(dc.get(), reinterpret_cast<HGDIOBJ>(SendMessageW(link, WM_GETFONT, 0, 0)));
  RECT area{};
  DrawTextW(dc.get(), text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
  RECT client{};
  GetClientRect(link, &client);
  area.right = std::min(area.right + 2, client.right);
  area.bottom = std::min(area.bottom + 1, client.bottom);
  UniqueGdi<HPEN> pen(CreatePen(PS_DOT, 1, kLinkColor));
  SelectScope frame_pen(dc.get(), pen.get());
  SelectScope no_fill(dc.get(), GetStockObject(NULL_BRUSH));
  SetBkMode(dc.get(), TRANSPARENT);
  Rectangle(dc.get(), area.left, area.top, area.right, area.bottom);
}

}  // namespace

LRESULT CALLBACK DialogBase::LinkKeys(HWND link, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR, DWORD_PTR) {
  switch (message) {
    case WM_GETDLGCODE: {
      // Enter and Space go to the link, not to the dialog's default button.
      const auto* pending = reinterpret_cast<const MSG*>(lparam);
      if (pending && (pending->message == WM_KEYDOWN || pending->message == WM_CHAR) &&
          IsFollowKey(pending->wParam)) {
        return DLGC_WANTMESSAGE | DefSubclassProc(link, message, wparam, lparam);
      }
      break;
    }
    case WM_KEYDOWN:
      if (IsFollowKey(wparam)) {
        SendMessageW(GetParent(link), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(link), STN_CLICKED),
                     reinterpret_cast<LPARAM>(link));
        return 0;
      }
      break;
    case WM_CHAR:
      if (IsFollowKey(wparam)) return 0;  // followed on the key press
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: {
      // The parent paints under a see-through link, so the frame goes with a
      // repaint of that spot.
      HWND parent = GetParent(link);
      RECT spot{};
      GetWindowRect(link, &spot);
      MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&spot), 2);
      RedrawWindow(parent, &spot, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
      break;
    }
    case WM_PAINT: {
      LRESULT painted = DefSubclassProc(link, message, wparam, lparam);
      if (GetFocus() == link) DrawLinkFocus(link);
      return painted;
    }
    case WM_NCDESTROY:
      RemoveWindowSubclass(link, LinkKeys, 0);
      break;
    default:
      break;
  }
  return DefSubclassProc(link, message, wparam, lparam);
}

bool DialogBase::IsLink(int id) const {
  return std::find(links_.begin(), links_.end(), id) != links_.end();
}

// Links are blue; over a background picture labels let it show through.
INT_PTR DialogBase::StaticColors(HDC dc, HWND control) {
  const bool link = IsLink(GetDlgCtrlID(control));
  if (link) SetTextColor(dc, kLinkColor);
  if (background_ && SeesThrough(control)) {
    SetBkMode(dc, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH));
  }
  if (!link) return FALSE;
  SetBkMode(dc, TRANSPARENT);
  return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_3DFACE));
}

void DialogBase::ApplyRoundedRegion() {
  RECT bounds{};
  GetWindowRect(hwnd_, &bounds);
  UniqueRegion region(CreateRoundRectRgn(0, 0, bounds.right - bounds.left + 1,
                                         bounds.bottom - bounds.top + 1, kCornerEllipse,
                                         kCornerEllipse));
  // The window owns the region once SetWindowRgn succeeds.
  if (region && SetWindowRgn(hwnd_, region.get(), TRUE)) region.release();
}

std::wstring DialogBase::Text(int id) const {
  HWND item = Item(id);
  int length = GetWindowTextLengthW(item);
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  int copied = GetWindowTextW(item, text.data(), length + 1);
  text.resize(static_cast<std::size_t>(copied > 0 ? copied : 0));
  return text;
}

void DialogBase::SetText(int id, const std::wstring& text) { SetDlgItemTextW(hwnd_, id, text.c_str()); }

bool DialogBase::Checked(int id) const { return IsDlgButtonChecked(hwnd_, id) == BST_CHECKED; }

void DialogBase::SetChecked(int id, bool checked) {
  CheckDlgButton(hwnd_, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

void DialogBase::Focus(int id, bool select_all) {
  SendMessageW(hwnd_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(id)), TRUE);
  if (select_all) SendDlgItemMessageW(hwnd_, id, EM_SETSEL, 0, -1);
}

void DialogBase::Enable(int id, bool enabled) { EnableWindow(Item(id), enabled); }

void OpenHelpTopic(const wchar_t* topic) {
  // Quoted: the install folder usually has blanks in it ("Program Files").
  OpenWithShell(L"hh.exe", L"\"" + foundation::JoinPath(platform::ModuleFolder(), topic) + L"\"");
}

namespace {
thread_local ScopedShellOpener* installed_opener = nullptr;
}

ScopedShellOpener::ScopedShellOpener(ShellOpener opener)
    : opener_(std::move(opener)), saved_(installed_opener) {
  installed_opener = this;
}
ScopedShellOpener::~ScopedShellOpener() { installed_opener = saved_; }

std::intptr_t OpenWithShell(const std::wstring& target, const std::wstring& parameters) {
  std::intptr_t result = 0;
  if (installed_opener) {
    result = installed_opener->opener_(target, parameters);
  } else {
    result = reinterpret_cast<std::intptr_t>(
        ShellExecuteW(nullptr, L"open", target.c_str(),
                      parameters.empty() ? nullptr : parameters.c_str(), nullptr, SW_SHOWNORMAL));
  }
  // A page or topic that did not open leaves the user with nothing: say which.
  if (result <= 32) {
    foundation::Trace(L"Could not open " + target + (parameters.empty() ? L"" : L" " + parameters) +
                      L" : " + std::to_wstring(result));
  }
  return result;
}

}  // namespace tavrine::dialogs::win32
