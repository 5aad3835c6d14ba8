' A failure that the library shows in a text box: without a display it is written to standard error, and the call returns.
Dim closed, patient
Set closed = CreateObject("OXPlatform.Connection")
Set patient = CreateObject("OXClass.cPatient")
Check "nothing is loaded", 0, patient.LoadOnPatientIDorPDBID(closed, "P-1", 0)
Done
