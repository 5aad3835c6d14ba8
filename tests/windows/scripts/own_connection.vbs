' A connection of the script itself: an object of a class of the script, which passes the calls on and sees each statement.
Class OwnConnection
    Public Inner
    Public Statements
    Public Function Execute(text)
        Statements = Statements & text & "|"
        Set Execute = Inner.Execute(text)
    End Function
    Public Function NewRecordset()
        Set NewRecordset = Inner.NewRecordset()
    End Function
    Public Function BeginTrans()
        BeginTrans = Inner.BeginTrans()
    End Function
    Public Sub CommitTrans()
        Inner.CommitTrans
    End Sub
End Class

Dim own, patient, again, doctor, setting
Set own = New OwnConnection
Set own.Inner = OpenClinic()

Set patient = CreateObject("OXClass.cPatient")
patient.PatientID = "P-1"
patient.LastName = "Ek"
patient.Save own
Check "the patient has a number", True, patient.ID > 0
Check "the insert went through the script", True, InStr(own.Statements, "INSERT INTO Patient_T ") > 0
Set again = CreateObject("OXClass.cPatient")
Check "found", patient.ID, again.LoadOnPatientIDorPDBID(own, "P-1", 0)
Check "name", "Ek", again.LastName

Set doctor = CreateObject("OXClass.cDoctor")
doctor.DrLastName = "Strand"
Check "doctor saved", True, doctor.SaveDoctor(own)
doctor.DrFirstName = "Eva"
Check "doctor changed", True, doctor.SaveDoctor(own)
Check "one doctor", 1, CLng(own.Inner.Execute("SELECT COUNT(*) AS n FROM Doctor_T").Fields("n").Value)

Set setting = CreateObject("OXClass.cGlobalList")
setting.ListID = 77
setting.ListText = "text"
setting.Save own
Check "setting saved in a transaction", True, setting.GlobalListID > 0

On Error Resume Next
patient.Save New OtherObject
Check "an object that is no connection", 13, Err.Number
On Error GoTo 0

Class OtherObject
    Public Name
End Class

own.Inner.Close
Done
