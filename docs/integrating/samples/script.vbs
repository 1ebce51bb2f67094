' TavrinEUI from VBScript: late-bound, by-value calls only.
'
'   cscript //nologo script.vbs REMOTE-FILE
'
' A script passes its variables by reference as VARIANTs, so a method with a
' typed by-reference parameter (W_GetMessageString's BSTR*, W_GetQuota_Command's
' double*) refuses them with a type mismatch: call those from C++ instead.
'
' Calls: clsClient.GetCurrentUser, UICommands.W_AutoReconnect,
'        TavrinEenum.TavrinEInit / ReadMachineList,
'        CBackup.IsScheduleBackupRunning, CRestore.W_GetVersions.
Option Explicit
Dim client, commands, browser, backup, restore, user, code, loaded
If WScript.Arguments.Count <> 1 Then
  WScript.Echo "usage: cscript //nologo script.vbs REMOTE-FILE"
  WScript.Quit 2
End If

Set client = CreateObject("TavrinEUI.clsClient")
user = client.GetCurrentUser()
If user = "" Then
  WScript.Echo "script: nobody is logged in"
  WScript.Quit 1
End If

Set commands = CreateObject("TavrinEUI.UICommands")
code = commands.W_AutoReconnect()          ' the silent login; 402 when it worked
If code <> 402 Then
  WScript.Echo "script: the silent login answered " & code
  WScript.Quit 1
End If

Set browser = CreateObject("TavrinEUI.TavrinEenum")
loaded = browser.TavrinEInit()             ' fetches the listing
WScript.Echo "script: " & user & " logged in; listing fetched: " & (loaded <> 0) & _
  "; computers: " & browser.ReadMachineList()

Set backup = CreateObject("TavrinEUI.CBackup")
WScript.Echo "script: scheduled backup running: " & backup.IsScheduleBackupRunning(user)

Set restore = CreateObject("TavrinEUI.CRestore")
code = restore.W_GetVersions(WScript.Arguments(0))   ' fetches BackupVersion.txt
WScript.Echo "script: W_GetVersions -> " & code
If code <> 402 Then WScript.Quit 1
WScript.Echo "script: done"
