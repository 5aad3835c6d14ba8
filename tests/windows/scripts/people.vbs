' Patients, doctors and clinics: create, save, load, change, and arguments by reference.
Dim con, patient, again, key, identifier, count, doctor, doctors, clinic, clinics
Set con = OpenClinic()

Set patient = CreateObject("OXClass.cPatient")
patient.PatientID = "19800131-1234"
patient.LastName = Chr(197) & "kesson"
patient.FirstName = "Anna"
patient.BirthDate = #1/31/1980#
patient.Sex = "F"
patient.OtherIDs.Add "X-1", 0
Check "saved", 0, patient.Save(con)
Check "the key", True, patient.ID > 0

Set again = CreateObject("OXClass.cPatient")
identifier = "19800131-1234"
key = 0
Check "found", 1, again.LoadOnPatientIDorPDBID(con, identifier, key)
Check "last name", Chr(197) & "kesson", again.LastName
Check "first name", "Anna", again.FirstName
Check "birth date", #1/31/1980#, again.BirthDate
Check "sex", "F", again.Sex
Check "key", patient.ID, again.ID
Check "other identifiers", "X-1", again.OtherIDs.Item(1).str

again.FirstName = "Anna O'Brien"
again.Save con
Set patient = CreateObject("OXClass.cPatient")
Check "found by key", 1, patient.LoadOnPatientIDorPDBID(con, "", again.ID)
Check "changed", "Anna O'Brien", patient.FirstName
Check "identifier", "19800131-1234", patient.PatientID
Check "not found", 0, patient.LoadOnPatientIDorPDBID(con, "nobody", 0)

Set doctor = CreateObject("OXClass.cDoctor")
doctor.DrLastName = "Berg"
doctor.DrFirstName = "Dan"
Check "doctor saved", True, doctor.SaveDoctor(con)
Set doctors = CreateObject("OXClass.cDoctors")
Check "all doctors", 1, doctors.GetAllDoctors(con)
count = 0
For Each doctor In doctors
    count = count + 1
    Check "doctor", "Berg", doctor.DrLastName
Next
Check "doctors by For Each", doctors.Count, count
Check "a doctor by position", "Dan", doctors(1).DrFirstName

Set clinic = CreateObject("OXClass.cClinic")
clinic.ClinicName = "Nord"
Check "clinic saved", True, clinic.SaveClinic(con)
Set clinics = CreateObject("OXClass.cClinics")
Check "all clinics", 1, clinics.GetAllClinics(con)
Check "a clinic by its name", clinic.ID, clinics.ItemOnClinicName("Nord", con).ID

con.Close
Done
