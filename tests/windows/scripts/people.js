// Patients and doctors from JScript: properties, methods, optional arguments, failures as exceptions.
var con = OpenClinic();
var patient = new ActiveXObject("OXClass.cPatient");
patient.PatientID = "P-7";
patient.LastName = "\u00C5kesson \u4E2D";
patient.Save(con);

var again = new ActiveXObject("OXClass.cPatient");
Check("found", 1, again.LoadOnPatientIDorPDBID(con, "P-7", 0));
Check("last name", "\u00C5kesson \u4E2D", again.LastName);
Check("key", patient.ID, again.ID);

var doctors = new ActiveXObject("OXClass.cDoctors");
var names = ["Berg", "Dahl"];
for (var i = 0; i < names.length; ++i) {
    var doctor = new ActiveXObject("OXClass.cDoctor");
    doctor.DrLastName = names[i];
    Check("saved", true, doctor.SaveDoctor(con));
}
Check("doctors", 2, doctors.GetAllDoctors(con));
Check("by position", "Dahl", doctors.Item(2).DrLastName);
Check("by default member", "Berg", doctors(1).DrLastName);

var images = new ActiveXObject("OXClass.cImages");
Check("an optional argument left out", 0, images.LoadAll4Object(con, 1, again.ID));

var number = 0, text = "";
try {
    con.Execute("SELECT x FROM nowhere");
} catch (failure) {
    number = failure.number >>> 0;
    text = failure.description;
}
Check("number", 0x80040E37, number);
Check("text", "no such table: nowhere", text);

var rows = con.Execute("SELECT DrLastName_NVC FROM Doctor_T ORDER BY DrLastName_NVC");
var listed = "";
for (; !rows.EOF; rows.MoveNext()) listed += rows.Fields(0).Value + ",";
Check("rows", "Berg,Dahl,", listed);
con.Close();
Done();
