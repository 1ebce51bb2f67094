' Late-bound calls as a script makes them: by value only. A typed by-reference
' parameter (BSTR*, long*) cannot take a script variable: that call must fail.
Option Explicit
Dim failures : failures = 0
Sub Check(condition, what)
  If Not condition Then
    WScript.Echo "FAIL: " & what
    failures = failures + 1
  End If
End Sub

Dim client, commands, enumerator, result, text
Set client = CreateObject("TavrinEUI.clsClient")
result = client.SetIPAddress("10.1.2.3")
Check IsEmpty(result), "SetIPAddress returns an empty variant"
Check TypeName(client.GetMachineRandomNumber()) = "String", "GetMachineRandomNumber returns a string"

Set enumerator = CreateObject("TavrinEUI.TavrinEenum")
Check enumerator.IsItemExists("machine") = False, "IsItemExists is False while not available"

Set commands = CreateObject("TavrinEUI.UICommands")
text = "before"
On Error Resume Next
result = commands.W_GetMessageString(-424, text)
Check Err.Number <> 0, "a typed by-reference parameter refuses a script variable"
Err.Clear
On Error GoTo 0
Check text = "before", "the refused call left the variable alone"

If failures = 0 Then WScript.Echo "late_bound: all checks passed"
WScript.Quit failures
