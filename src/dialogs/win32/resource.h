// Control identifiers: IDC_ + the control names the dialogs are known by.
#pragma once

#define IDD_frmLogin 101
#define IDD_frmEncKeyOption 102
#define IDD_EncryptionPsd 103
#define IDD_Proxysetting 104
#define IDD_frmSession 105

// Shared by several dialogs.
#define IDC_Cancel 1011
#define IDC_IDCancel 1111
#define IDC_lblHelp 1112

// frmLogin
#define IDC_lblUserName 1001
#define IDC_txtUserName 1002
#define IDC_ComboUserName 1003
#define IDC_lblPassword 1004
#define IDC_txtPassword 1005
#define IDC_lblServer 1006
#define IDC_schipaddress 1007
#define IDC_remunamepwd 1008
#define IDC_auto_Reconnect 1009
#define IDC_Login 1010
#define IDC_advanced 1012
#define IDC_picNewUserReg 1013
#define IDC_picForgotPassword 1014
#define IDC_picUpgrade 1015
#define IDC_picFirewall 1016
#define IDC_picBanner 1017

// frmEncKeyOption
#define IDC_lblHeading 1101
#define IDC_DefaultKey 1102
#define IDC_lblDefaultNote 1103
#define IDC_PrivateKey 1104
#define IDC_lblPrivateNote 1105
#define IDC_lblEncPsd1 1106
#define IDC_txtEncPsd1 1107
#define IDC_lblEncPsd2 1108
#define IDC_txtEncPsd2 1109
#define IDC_Enc_Option_Next 1110

// EncryptionPsd
#define IDC_lblInstruction 1201
#define IDC_lblEncPsd 1202
#define IDC_txtEncPsd 1203
#define IDC_IDReg 1204

// Proxysetting
#define IDC_Proxyenabled 1301
#define IDC_lblProxyNote 1302
#define IDC_lblProxyIntro 1303
#define IDC_httpopt 1304
#define IDC_socksopt 1305
#define IDC_lblIPText 1306
#define IDC_IPText 1307
#define IDC_lblProxyPort 1308
#define IDC_ProxyPort 1309
#define IDC_cmdGetIESetting 1310
#define IDC_lblCredentials 1311
#define IDC_ProxyAuth 1312
#define IDC_lblsUsername 1313
#define IDC_sUsername 1314
#define IDC_lblsPassword 1315
#define IDC_sPassword 1316
#define IDC_Ok 1317
#define IDC_Reset 1318

// frmSession
#define IDC_lblSessionUser 1401
#define IDC_txtSessionUser 1402
#define IDC_lblSessionServer 1403
#define IDC_txtSessionServer 1404
#define IDC_lblSessionQuota 1405
#define IDC_txtSessionQuota 1406
#define IDC_pbSessionQuota 1407
#define IDC_txtSessionQuotaTime 1408
#define IDC_cmdRefresh 1409

// The manifest that asks for common controls 6, activated around our dialogs.
#define IDR_DIALOGS_MANIFEST 2
