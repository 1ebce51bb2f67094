#include "dialogs/dialog_texts.h"
#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/settings.h"

namespace tavrine::dialogs::win32 {

frmSession::frmSession() : DialogBase(IDD_frmSession) {}

bool frmSession::Show(int modal) {
  info_ = LoadSessionInfo();
  // Only the modal form exists: a modeless window would outlive the call.
  (void)modal;
  return ShowModal(reinterpret_cast<HWND>(g_ParentHandle)) != -1;
}

int frmSession::OnInit() {
  SetWindowTextW(hwnd(), (foundation::CurrentSettings().caption + L" - " +
                          LocalText(caption::kSessionTitle, L"Session")).c_str());
  SetText(IDC_lblSessionUser, LocalText(caption::kSessionUser, L"User:"));
  SetText(IDC_lblSessionServer, LocalText(caption::kSessionServer, L"Server:"));
  SetText(IDC_lblSessionQuota, LocalText(caption::kSessionQuota, L"Quota:"));
  SetText(IDC_Cancel, LocalText(caption::kClose, L"Close"));
  SetText(IDC_txtSessionUser, info_.user);
  SetText(IDC_txtSessionServer, info_.server);
  SetText(IDC_txtSessionQuota, info_.quota_known ? FormatBytes(info_.used_bytes) + L" / " +
                                                       FormatBytes(info_.quota_bytes)
                                                 : L"-");
  hover_.Add(Item(IDC_Cancel), L"Small Btn1", L"Small Btn2");
  return IDC_Cancel;
}

void frmSession::OnCommand(int id, int) {
  if (id == IDC_Cancel || id == IDCANCEL || id == IDOK) End(1);
}

}  // namespace tavrine::dialogs::win32
