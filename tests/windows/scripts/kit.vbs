' What the scripts share: checks that count, and the connection to a new clinic database. The last line of a script is Done, whose
' line tells that the script has not stopped before: the script host ends in silence when an error is not handled.
Option Explicit
Dim checks, failures
checks = 0
failures = 0

' Numbers of different types are compared by their value.
Function KindOf(value)
    KindOf = VarType(value)
    If KindOf >= vbInteger And KindOf <= vbDouble Then KindOf = vbDouble
End Function

Sub Check(what, expected, actual)
    checks = checks + 1
    If KindOf(expected) = KindOf(actual) Then
        If expected = actual Then Exit Sub
    End If
    failures = failures + 1
    WScript.Echo "FAILED: " & what & ": expected " & expected & " (" & VarType(expected) & "), got " & actual & " (" & VarType(actual) & ")"
End Sub

' Checks the error that is pending, and clears it.
Sub CheckError(what, number, source, description)
    Dim n, s, d
    n = Err.Number
    s = Err.Source
    d = Err.Description
    Err.Clear
    Check what & ", number", Hex(number), Hex(n)
    Check what & ", source", source, s
    Check what & ", description", description, d
End Sub

Function OpenClinic()
    Set OpenClinic = CreateObject("OXPlatform.Connection")
    OpenClinic.Open "Provider=SQLite;Data Source=clinic.db"
End Function

Sub Done()
    If failures = 0 Then
        WScript.Echo "done: " & checks & " checks"
    Else
        WScript.Echo "FAILED: " & failures & " of " & checks & " checks"
    End If
End Sub
