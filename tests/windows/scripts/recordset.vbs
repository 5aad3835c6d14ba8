' The database layer: recordsets, fields by name and position, For Each over the fields, edits, transactions.
Dim con, rows, field, names, count
Set con = OpenClinic()
con.Execute "CREATE TABLE Tooth (Number INTEGER PRIMARY KEY, Name VARCHAR(20))"
con.Execute "INSERT INTO Tooth VALUES (11, 'incisor')", count
Check "records affected", 1, count
con.BeginTrans
con.Execute "INSERT INTO Tooth VALUES (13, 'canine')"
con.RollbackTrans
con.Execute "INSERT INTO Tooth VALUES (16, NULL)"

Set rows = con.Execute("SELECT Number, Name FROM Tooth ORDER BY Number")
Check "default member", "incisor", rows("Name").Value
Check "by position", 11, rows(0).Value
Check "fields", 2, rows.Fields.Count
Check "a field by its name", "Name", rows.Fields("name").Name
names = ""
For Each field In rows.Fields
    names = names & field.Name & ","
Next
Check "names", "Number,Name,", names
rows.MoveNext
Check "a null", True, IsNull(rows("Name").Value)
rows.MoveNext
Check "the end", True, rows.EOF
rows.Close

Set rows = CreateObject("OXPlatform.Recordset")
rows.CursorLocation = 3
rows.Open "SELECT Number, Name FROM Tooth ORDER BY Number", con, 3, 3
Check "count", 2, rows.RecordCount
rows.MoveLast
rows("Name") = "molar"
rows.Update
rows.Close
Check "the edit is stored", "molar", con.Execute("SELECT Name FROM Tooth WHERE Number = 16").Fields(0).Value
con.Close
Done
