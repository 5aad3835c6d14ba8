' Failures: number, source and text, of statements, of the library and of wrong calls.
Dim con, patient, images, members, nothingYet
Set con = OpenClinic()
Set patient = CreateObject("OXClass.cPatient")
Set images = CreateObject("OXClass.cImages")
On Error Resume Next

con.Execute "SELECT x FROM nowhere"
CheckError "a missing table", &H80040E37, "SQLite", "no such table: nowhere"
con.Execute "SELECT nonsense FROM Patient_T"
Check "a missing column", "80040E10", Hex(Err.Number)
Err.Clear
con.Open "Provider=SQLite;Data Source=clinic.db"
Check "a connection that is open", 3705, Err.Number And &HFFFF&
Err.Clear
Set nothingYet = images.Item(1)
Check "an image that is missing is Nothing", 0, Err.Number
Set members = CreateObject("OXPlatform.Collection")
Set nothingYet = members.Item(1)
CheckError "a position without a member", 9, "Runtime", "Subscript out of range"
members.Add 5, "key"
members.Add 6, "KEY"
CheckError "a key that exists", 457, "Runtime", "This key is already associated with an element of this collection"
patient.BirthDate = "no date"
Check "a wrong type", 13, Err.Number
Err.Clear
patient.Nonsense = 1
Check "an unknown member", 438, Err.Number
Err.Clear
images.Remove 1, 2, 3
Check "too many arguments", 450, Err.Number
Err.Clear
images.Remove
Check "an argument is missing", 449, Err.Number
Err.Clear
patient.Save con
Check "no failure leaves none", 0, Err.Number
Done
