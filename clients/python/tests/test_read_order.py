"""Of two bad columns in a row, the first one in the documented order raises, whichever compiler built the library."""
import oxclass
from tests.kit import DatabaseTest

MISSING_COLUMN = 3265
TYPE_MISMATCH = 13
INVALID_NULL = 94


class OfTwoBadColumns(DatabaseTest):
    def failure_of(self, call):
        with self.assertRaises(oxclass.Error) as raised:
            call()
        return raised.exception.Number & 0xFFFF

    def test_of_a_comment_the_text_is_read_before_the_date(self):
        self.con.Execute("INSERT INTO Comments_T (tabelID, objectID, commentString, signature, dates)"
                         " VALUES (1, 7, NULL, 'Ek', 'x')")
        image = oxclass.CreateObject("OXClass.cImage")
        image.ID = 7
        self.assertEqual(self.failure_of(lambda: image.GetComments(self.con)), INVALID_NULL)

    def test_of_a_doctor_the_name_is_read_before_the_type(self):
        self.con.Execute("ALTER TABLE Doctor_T RENAME COLUMN DrName_NVC TO a")
        self.con.Execute("INSERT INTO Doctor_T (drID, DrType_INT) VALUES (5, 'x')")
        doctors = oxclass.CreateObject("OXClass.cDoctors")
        self.assertEqual(self.failure_of(lambda: doctors.GetAllDoctors(self.con)), MISSING_COLUMN)

    def test_of_a_clinic_the_identifier_is_read_before_the_texts(self):
        self.con.Execute("DROP TABLE Clinic_T")
        self.con.Execute("CREATE TABLE Clinic_T (ClinicID TEXT, ClinicName TEXT)")
        self.con.Execute("INSERT INTO Clinic_T VALUES ('x', 'North')")
        clinics = oxclass.CreateObject("OXClass.cClinics")
        self.assertEqual(self.failure_of(lambda: clinics.GetAllClinics(self.con)), TYPE_MISMATCH)
