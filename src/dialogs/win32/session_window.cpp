#include <windows.h>
#include <commctrl.h>

#include "dialogs/dialog_texts.h"
#include "dialogs/session_texts.h"
#include "dialogs/win32/dialogs_win32.h"
#include "dialogs/win32/resource.h"
#include "foundation/configuration.h"
#include "platform/services.h"

namespace tavrine::dialogs::win32 {

frmSession::frmSession() : DialogBase(IDD_frmSession) {}

bool frmSession::Show(int modal) {
  info_ = LoadSessionInfo();
  // Only the modal form exists: a modeless window would outlive the call.
  (void)modal;
  return ShowModal(reinterpret_cast<HWND>(g_ParentHandle)) != -1;
}

int frmSession::OnInit() {
  SetWindowTextW(hwnd(), (foundation::LoadedConfiguration().caption + L" - " +
                          LocalText(caption::kSessionTitle, L"Session"))
                             .c_str());
  SetText(IDC_lblSessionUser, LocalText(caption::kSessionUser, L"User:"));
  SetText(IDC_lblSessionServer, LocalText(caption::kSessionServer, L"Server:"));
  SetText(IDC_lblSessionQuota, LocalText(caption::kSessionQuota, L"Quota:"));
  SetText(IDC_cmdRefresh, LocalText(caption::kSessionRefresh, L"&Refresh"));
  SetText(IDC_Cancel, LocalText(caption::kClose, L"&Close"));
  SetText(IDC_txtSessionUser, info_.user);
  SetText(IDC_txtSessionServer, info_.server);
  SendDlgItemMessageW(hwnd(), IDC_pbSessionQuota, PBM_SETRANGE32, 0, 1000);
  ShowQuota(info_.quota);
  hover_.Add(Item(IDC_cmdRefresh), L"Small Btn1", L"Small Btn2");
  hover_.Add(Item(IDC_Cancel), L"Small Btn1", L"Small Btn2");
  return IDC_Cancel;
}

void frmSession::ShowQuota(const std::optional<operations::QuotaReading>& quota) {
  SetText(IDC_txtSessionQuota, QuotaUsageText(quota));
  SendDlgItemMessageW(hwnd(), IDC_pbSessionQuota, PBM_SETPOS, QuotaPermille(quota), 0);
  SetText(IDC_txtSessionQuotaTime, QuotaReadAtText(quota, platform::CurrentClock().Now()));
}

void frmSession::OnCommand(int id, int) {
  if (id == IDC_Cancel || id == IDCANCEL || id == IDOK) {
    End(1);
  } else if (id == IDC_cmdRefresh) {
    // The engine run blocks this window; its buttons wait with it.
    for (int button : {IDC_cmdRefresh, IDC_Cancel}) Enable(button, false);
    ShowQuota(RefreshQuota());
    for (int button : {IDC_cmdRefresh, IDC_Cancel}) Enable(button, true);
    Focus(IDC_cmdRefresh);
  }
}

}  // namespace tavrine::dialogs::win32
